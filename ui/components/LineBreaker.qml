import QtQuick

// Breaks a text into as many lines as it needs, between words. Japanese has no spaces: a line ends
// there after a mark or after a particle that something else than hiragana follows, which is nearly
// always the end of a phrase. The layout itself would break it, and Korean, inside words.
FontMetrics {
    id: breaker

    readonly property var asian: /[\u3000-\u9fff\uac00-\ud7af]/
    readonly property var gaps: /[ 、。，！？・]|[をがはにでとのもへて](?=[^ぁ-ゖー、。！？ ])/g

    function pieces(text: string): var {
        return text.replace(gaps, "$&\u200b").split("\u200b").filter(piece => piece !== "")
    }
    // A call alone is not noticed to depend on the font.
    function widthOf(line: string): real { return font.pixelSize > 0 ? advanceWidth(line.trim()) : 0 }

    // The lines of the pieces, each as full as `room` allows.
    function lines(pieces: var, room: real): var {
        return pieces.reduce((done, piece) => {
            const longer = done.length ? done[done.length - 1] + piece : ""
            if (longer && widthOf(longer) <= room) return [...done.slice(0, -1), longer]
            return [...done, piece]
        }, [])
    }
    // Balanced: the last line is no lonely word.
    function broken(text: string, room: real, balanced: bool): string {
        if (room <= 0 || !balanced && !asian.test(text)) return text
        const words = pieces(text)
        let best = lines(words, room)
        for (let narrow = room - 4; balanced && isWidow(best) && narrow > 8; narrow -= 4) {
            const next = lines(words, narrow)
            if (next.length > best.length) break
            best = next
        }
        return best.map(line => line.trim()).join("\n")
    }
    // Whether a word is too wide for a line.
    function cuts(text: string, room: real): bool {
        return pieces(text).some(piece => widthOf(piece) > room)
    }
    function isWidow(lines: var): bool {
        const widths = lines.map(line => widthOf(line))
        return widths[widths.length - 1] < 0.33 * Math.max(...widths)
    }
}
