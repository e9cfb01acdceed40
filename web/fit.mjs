// Texts that shrink to four fifths of their size at most where they do not fit into one line, and
// wrap beyond that. An element with data-fit is as wide as its room; with data-fit="line" it is small
// already, and wraps at its full size where shrinking does not save the second line.

const LEAST = 0.8;

function fit(element) {
  element.style.fontSize = "";
  element.style.whiteSpace = "nowrap";
  const { clientWidth: room, scrollWidth: wanted } = element;
  element.style.whiteSpace = "";
  if (!room || wanted <= room) return;
  if (element.dataset.fit === "line" && wanted * LEAST > room) return;
  const size = parseFloat(getComputedStyle(element).fontSize);
  element.style.fontSize = `${Math.floor(size * Math.max(LEAST, room / wanted))}px`;
}

// Fits all such texts in `root` whenever their words or their room change.
export function keepFitting(root) {
  const elements = root.querySelectorAll("[data-fit]");
  const widths = new Map();
  const resized = new ResizeObserver((entries) => {
    for (const { target, contentRect } of entries) {
      if (widths.get(target) === contentRect.width) continue; // what fitting changes is the height
      widths.set(target, contentRect.width);
      fit(target);
    }
  });
  const reworded = new MutationObserver((records) => {
    for (const element of new Set(records.map(({ target }) => target))) fit(element);
  });
  for (const element of elements) {
    resized.observe(element);
    reworded.observe(element, { childList: true });
  }
  document.fonts?.ready.then(() => elements.forEach(fit));
}
