// What the page does for the module: the functions that it imports, answered by web/core.mjs.
//
// Texts are UTF-8, given as their first byte and their length in bytes, and valid during the call.
// A text that the page answers with lies in the exchange buffer (Exchange.h) when the call returns.
// None of them calls back into the application, and none fails: the page keeps its own troubles.
#pragma once

#include <cstddef>
#include <cstdint>

#define ENDPIN_IMPORT(name) __attribute__((import_module("endpin"), import_name(name)))

namespace endpin::host {

// One diagnostic line.
ENDPIN_IMPORT("log") void log(const char* text, std::size_t length);

// The text of a key in the user's language, or -1: its length.
ENDPIN_IMPORT("text")
std::int32_t text(const char* key, std::size_t keyLength, const char* table,
                  std::size_t tableLength);

// The settings that outlive the page. `settingRead` answers with a length, or -1 when nothing is
// kept under the key; `settingWrite` with whether the value is kept.
ENDPIN_IMPORT("settingRead") std::int32_t settingRead(const char* key, std::size_t keyLength);
ENDPIN_IMPORT("settingWrite")
bool settingWrite(const char* key, std::size_t keyLength, const char* value,
                  std::size_t valueLength);
ENDPIN_IMPORT("settingsClear") void settingsClear();

// The application wants samples of the microphone, or no more of them.
ENDPIN_IMPORT("listen") void listen(bool wanted);
// Which microphone; the empty id is the system's choice.
ENDPIN_IMPORT("useMicrophone") void useMicrophone(const char* id, std::size_t length);

// Plays the sound file of that path, relative to the page, once.
ENDPIN_IMPORT("playSound") void playSound(const char* path, std::size_t length);

// The tone sounds at `frequency` hertz in that waveform (ToneSynthesizer.h), or stops.
ENDPIN_IMPORT("tone") void tone(bool playing, float frequency, std::uint32_t waveform);

// The screen is to stay on, or may go dark.
ENDPIN_IMPORT("keepAwake") void keepAwake(bool wanted);

// Once for each row of the screen table at start. An action without a sender has the empty one.
ENDPIN_IMPORT("outletExists")
void outletExists(const char* name, std::size_t nameLength, const char* kind,
                  std::size_t kindLength);
ENDPIN_IMPORT("actionExists")
void actionExists(const char* name, std::size_t nameLength, const char* sender,
                  std::size_t senderLength);

// A property of an element has a new value. Type 0 is a flag, "true" or "false", 1 a number in
// decimal digits, 2 a text.
ENDPIN_IMPORT("outletChanged")
void outletChanged(const char* name, std::size_t nameLength, const char* property,
                   std::size_t propertyLength, std::uint32_t type, const char* value,
                   std::size_t valueLength);

}  // namespace endpin::host
