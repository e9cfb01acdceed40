import QtQuick

// Breaks a text into as many lines as it needs, the last of them no lonely word. A text without
// spaces is left to whoever lays it out.
FontMetrics {
    id: breaker

    // The lines of the words, each as full as `room` allows.
    function lines(words: var, room: real): var {
        return words.reduce((done, word) => {
            const longer = done.length ? done[done.length - 1] + " " + word : ""
            if (longer && advanceWidth(longer) <= room) return [...done.slice(0, -1), longer]
            return [...done, word]
        }, [])
    }
    function broken(text: string, room: real): string {
        const words = text.split(" ")
        let best = lines(words, room)
        for (let narrow = room - 4; isWidow(best) && narrow > 8; narrow -= 4) {
            const next = lines(words, narrow)
            if (next.length > best.length) break
            best = next
        }
        return words.length > best.length ? best.join("\n") : text
    }
    function isWidow(lines: var): bool {
        const widths = lines.map(line => advanceWidth(line))
        return widths[widths.length - 1] < 0.33 * Math.max(...widths)
    }
}
