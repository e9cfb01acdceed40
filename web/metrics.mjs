// Every length of the screen in CSS pixels, from the window's size and its safe insets: the page's
// counterpart of ui/components/Metrics.qml, whose numbers it shares. They become custom properties
// of the document (`celloX` is --cello-x), flags become attributes (data-layout, data-size). It is a
// module of its own so that the room stands before the tuner has loaded.

const LEAST = 320; // the lesser side of the smallest window that is laid out; a smaller one scrolls

export function metricsFor(screenWidth, height, insets = { top: 0, right: 0, bottom: 0, left: 0 }) {
  const lying = screenWidth >= 1.2 * height;
  const low = lying && height < 700;
  const width = lying ? screenWidth : Math.min(screenWidth, 0.75 * height);
  const left = Math.floor((screenWidth - width) / 2);
  const tablet = lying ? !low : width > 600;
  const small = !tablet && (height <= 568 || width < 360);
  const by = (ofSmall, ofPhone, ofTablet) => (tablet ? ofTablet : small ? ofSmall : ofPhone);
  // What a window that lies has instead: while it is low, and from 700 on.
  const either = (upright, ofLow, ofHigh) => (low ? ofLow : lying ? ofHigh : upright);
  const between = (least, value, most) => Math.max(least, Math.min(most, value));

  // Type.
  const readout = lying ? Math.min(0.32 * height, 0.145 * width) : width * by(0.2, 0.2, 0.16);
  const note = lying ? Math.min(0.36 * height, 0.17 * width) : width * by(0.335, 0.335, 0.3);
  const caption = either(by(15, 17, between(22, 0.0273 * width, 28)), 17, height < 1000 ? 22 : 28);

  // The room, from the bottom to the top.
  const side = Math.max(insets.left, insets.right);
  const margin = low ? Math.max(24, side + 12) : tablet ? Math.round(0.07 * width) : by(16, 24, 0);
  const dockHeight = low ? 48 : by(44, 52, 60);
  const dockWidth = low ? Math.min(460, 0.54 * width) : Math.min(width - 2 * margin, 460);
  const dockBottom = height - (insets.bottom > 0 ? insets.bottom + 4 : low ? 12 : by(8, 8, 28));
  const dockTop = dockBottom - dockHeight;
  const baseline =
    dockTop - either(by(14, 0.028 * height, 0.042 * height), 0.062 * height, 0.042 * height);
  const readoutTop = baseline - 0.717 * readout;
  const floor = lying ? dockBottom : readoutTop - by(10, 0.026 * height, 0.03 * height);
  const top = insets.top + either(by(6, 10, 0.03 * height), 10, 0.03 * height);
  const middle = (top + floor) / 2;
  const lightRadius = lying ? Math.max(0.62 * (floor - top), 0.44 * width) : 0.62 * (floor - top);
  // Where the floor line starts: beside the dock that stands on it, or at the window's edge.
  const floorStart = lying ? margin + dockWidth + 24 : -left;

  const captionBaseline = top + 1.05 * caption + either(6, 2, 0.03 * height);
  const noteBaseline =
    captionBaseline + 0.655 * note +
    either(height * by(0.024, 0.024, 0.03), 15, 0.024 * height);

  // The lamp's picture; its glass begins 0.135 of the size further in. Lying it is over the read-out
  // if there is room for it, otherwise right of the note.
  const lamp = lying ? Math.min(0.26 * height, 0.13 * width, 200) : by(64, 0.2 * width, 128);
  const lampBesideNote = lying && readoutTop - noteBaseline < lamp + 48;
  const lampX = margin - 0.135 * lamp + (lampBesideNote ? 1.25 * note + 24 : 0);
  const lampBottom = lampBesideNote
    ? noteBaseline - 0.3275 * note + lamp / 2
    : lying
      ? readoutTop - 0.058 * height + 0.135 * lamp
      : floor - by(8, 0.028 * height, 0.028 * height);
  const lampGlassTop = lampBottom - 0.865 * lamp;

  // The cello is drawn in 400 x 1100 units: scroll at 10, tip of the end pin at 1097, axis at 200,
  // 176 to either side. In a narrow and high window it is as large as the lamp beside it and the
  // right edge allow.
  const roomForHalf = tablet
    ? Math.min(0.32 * width - 8, 0.68 * width - margin - lamp - 16)
    : (width - 2 * margin - lamp - 20) / 2;
  const unit = Math.min((floor - top) / 1087, roomForHalf / 176);
  const axis = lying
    ? (low ? 0.785 : 0.79) * width
    : tablet ? 0.68 * width : width - margin - 176 * unit - 4;
  const promptRoom = lying ? axis - 176 * unit - 8 - margin : width - margin - 8;
  const celloY = floor - 1097 * unit;

  // Warnings: the sign over its text, from `warningTop` down; or, where that does not fit, the sign
  // left of it, both in the middle of what note, lamp and read-out leave.
  const warningLimit = (lampBesideNote ? readoutTop : lampGlassTop) - 12;
  const warningBeside = low || (lying && warningLimit - noteBaseline < 5 * caption);
  const warningTextX = margin + (warningBeside ? 2.5 * caption : 0);
  const warningRoom = axis - 140 * unit - 8 - warningTextX;

  // The sheets over it.
  const sheetWidth = lying ? Math.min(560, width) : tablet ? 560 : width;
  const sheetMargin = lying ? (low ? 24 : 32) : tablet ? 32 : margin;
  const sheetLift = either(tablet ? 48 : 0, 0, 24); // above the bottom edge

  const startHeight = lying ? 72 : by(60, 72, 72);
  const promiseDrop = low ? 28 : 32; // from the button to the promise's baseline

  return {
    readout, note, caption,
    prompt: lying ? 0.42 * readout : 0.103 * width, // before the first note
    body: by(15, 17, 20),
    remark: by(15, 15, 17), // the second line of a row
    figure: by(17, 20, 24),
    temperament: by(15, 19, 24),
    width, height, left, margin,
    safeTop: insets.top, safeBottom: insets.bottom,
    dockHeight, dockWidth, dockTop, dockBottom, dockIcon: by(26, 26, 30),
    baseline, readoutTop, floor, top, middle, lightRadius, floorStart,
    unit, axis, promptRoom, celloX: axis - 200 * unit, celloY,
    ringSize: between(24, 58 * unit, 60),
    captionBaseline, noteBaseline,
    lamp, lampX, lampBottom,
    warningBeside, warningTextX, warningRoom,
    warningMiddle: (noteBaseline + 12 + warningLimit) / 2,
    warningTop: Math.min(middle, warningLimit - 4.2 * caption),
    // A trouble has more lines: beside the body where it is widest, and never beside the lower bout.
    troubleRoom: lying ? warningRoom : axis - 158 * unit - 8 - warningTextX,
    troubleCeiling: captionBaseline + 12,
    troubleLimit: lying ? warningLimit : Math.min(warningLimit, celloY + 835 * unit),
    sheetWidth, sheetMargin, sheetLift,
    sheetContent: sheetWidth - 2 * sheetMargin,
    sheetPadding: by(24, 44, 36),
    sheetLimit:
      height - (low ? insets.top + 32 : tablet ? Math.max(insets.top, 24) + sheetLift : insets.top),
    twoLines: by(58, 62, 68), // height of a row of two lines
    // Before listening.
    promise: width < 360 ? 15 : 17,
    nameBaseline: top + (lying ? 60 : 55),
    startHeight,
    startTop: (lying ? dockBottom - promiseDrop - 15 : dockTop) - startHeight,
    promiseDrop,
    startWidth: lying
      ? Math.min(400, promptRoom)
      : Math.min(width - 2 * margin, tablet ? 460 : width),
    // Where the floor line is brightest, of its length.
    floorAxis: (axis - floorStart) / (screenWidth - left - floorStart),
    lying, low, tablet, small,
    flat: low && height < 440, // so low that what is usually in a stack stands side by side
    tight: !tablet && !small && height < 700, // a phone too low for settings at their full spacing
  };
}

// What the screen is laid out by now.
export let metrics = null;
const followers = [];

// Calls `follow` now and after each change of the window.
export function onMetrics(follow) {
  followers.push(follow);
  follow(metrics);
}

function safeInsets(probe) {
  const { paddingTop, paddingRight, paddingBottom, paddingLeft } = getComputedStyle(probe);
  return {
    top: parseFloat(paddingTop),
    right: parseFloat(paddingRight),
    bottom: parseFloat(paddingBottom),
    left: parseFloat(paddingLeft),
  };
}

const UNITLESS = new Set(["floorAxis"]);

// Gives an element the numbers among these lengths as custom properties.
export function publishLengths({ style }, lengths) {
  for (const [name, value] of Object.entries(lengths)) {
    const property = `--${name.replace(/[A-Z]/g, (letter) => `-${letter.toLowerCase()}`)}`;
    if (typeof value !== "number") continue;
    style.setProperty(property, UNITLESS.has(name) ? value : `${Number(value.toFixed(3))}px`);
  }
}

function publish(page) {
  const { dataset } = page;
  publishLengths(page, metrics);
  dataset.layout = metrics.low ? "low" : metrics.lying ? "high" : "upright";
  dataset.size = metrics.tablet ? "tablet" : metrics.small ? "small" : "phone";
  for (const flag of ["flat", "tight", "warningBeside"]) dataset[flag] = metrics[flag];
}

function measure(screen) {
  const { clientWidth, clientHeight } = document.documentElement;
  const width = Math.max(LEAST, screen.clientWidth || clientWidth);
  const least = width >= 1.2 * LEAST ? LEAST : 1.5 * LEAST;
  const height = Math.max(least, screen.clientHeight || clientHeight);
  metrics = metricsFor(width, height, safeInsets(screen));
  publish(document.documentElement);
  for (const follow of followers) follow(metrics);
}

if (typeof document !== "undefined") {
  const screen = document.getElementById("screen"); // its padding is the safe insets
  measure(screen);
  addEventListener("resize", () => measure(screen)); // before anybody who observes a size is told
}
