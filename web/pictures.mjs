// The drawings behind the names that the tuner gives its pictures: here all of them are SVG, so that
// one serves every size and density.

const DRAWINGS = [
  [/^yellow\d+\.png$/, () => "lampYellow"],
  [/^green\d+\.png$/, () => "lampGreen"],
  [/^ring\d\.png$/, () => "ring"],
  [/^(\d)(?:st|nd|rd|th)_string.*\.png$/, (string) => `stringGlow${string}`],
  [/^chart(?:iphone|ipad)(\d+)\.png$/, (a4) => `chart${a4}`],
  [/^(\w+)\.png$/, (name) => name],
];

// The address of the drawing of a picture, "" for none.
export function drawingOf(picture) {
  for (const [names, drawing] of DRAWINGS) {
    const found = names.exec(picture);
    if (found) return `pictures/${drawing(found[1])}.svg`;
  }
  return "";
}

// What lights up must do so at once: these are loaded before they are wanted, and stay.
const PROMPT = ["lampYellow", "lampGreen", "lampDark", "haloYellow", "haloGreen", "ring"]
  .concat([1, 2, 3, 4].map((string) => `stringGlow${string}`))
  .concat([1, 2, 3, 4, 5, 6, 7].map((step) => `levelSwing${step}`));
const loaded = [];

export function loadPictures() {
  for (const name of PROMPT) {
    const image = new Image();
    image.src = `pictures/${name}.svg`;
    loaded.push(image);
  }
}
