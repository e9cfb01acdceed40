pragma Singleton
import QtQuick

// Titles and spoken names in the user's language. The screen fills the table before it shows; a
// missing key shows itself.
QtObject {
    property var table: ({})

    // The text of a key, with its placeholder filled.
    function of(key: string, argument): string {
        return String(table[key] ?? key).replace("%@", argument ?? "")
    }

    // A text in few words, for a narrow screen: that of a key is found at the key with "Brief".
    function brief(text: string): string {
        const key = Object.keys(table).find(key => table[key] === text && table[key + "Brief"])
        return key ? table[key + "Brief"] : text
    }
}
