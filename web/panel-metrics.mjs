// Every length on the sheets in CSS pixels: what the desktop's panels (ui/components) take from
// their metrics, as custom properties of `root` (`a4Baseline` is --a4-baseline).
import { onMetrics, publishLengths } from "./metrics.mjs";

// On a small phone, on a phone, on a tablet.
const BY_SIZE = {
  strip: [64, 64, 76], // height of the strip with the close button
  closeTop: [10, 14, 20],
  fade: [40, 56, 56],

  a4: [50, 68, 84], // size of the figures
  a4Baseline: [86, 120, 146],
  a4Unit: [20, 26, 32],
  calibrationBaseline: [33, 43, 50],
  temperamentBaseline: [112, 154, 190],
  calibrationHeight: [124, 176, 214],
  stepperTop: [58, 74, 94],
  stepperWidth: [120, 136, 160],
  stepperHeight: [44, 52, 60],
  presetGap: [6, 10, 12],
  presetHeight: [44, 50, 60],
  lineGap: [4, 5, 8],
  lineGapFar: [14, 20, 24],
  sliderBaseline: [20, 24, 28],
  sliderTop: [26, 36, 44],
  sliderHeight: [76, 90, 104],
  rowHeight: [46, 52, 58],
  choiceHeight: [52, 60, 60],

  forkTitle: [28, 34, 40],
  forkTitleBaseline: [42, 50, 56],
  forkNote: [88, 118, 160],
  forkNoteBaseline: [92, 122, 158],
  forkFrequency: [40, 52, 72],
  forkFrequencyBaseline: [144, 190, 250],
  forkSilent: [66, 80, 100], // height over the tone buttons before the first tone, and after it
  forkSounded: [166, 222, 288],
  toneHeight: [120, 132, 160],
  toneNote: [24, 28, 34],
  stopHeight: [48, 56, 60],

  chartTitleTop: [10, 14, 20],
  chartTop: [62, 74, 84],
  chartRowsTop: [6, 16, 16],
  chartFigures: [22, 26, 32],
  chartRow: [40, 52, 60],
  chartMark: [15, 15, 18],

  aboutTop: [14, 20, 26],
  aboutTitle: [30, 34, 42],
  aboutGap: [16, 24, 28],
  aboutParagraph: [14, 20, 24],
  aboutVersion: [14, 15, 18],
};
const IF_TIGHT = { presetHeight: 48 };
const IF_FLAT = { forkSounded: 112, toneHeight: 100, stopHeight: 44 };

export function followMetrics(root) {
  onMetrics(({ tablet, small, tight, flat }) => {
    const column = tablet ? 2 : small ? 0 : 1;
    const rows = Object.entries(BY_SIZE).map(([name, lengths]) => [name, lengths[column]]);
    const exceptions = { ...(tight && IF_TIGHT), ...(flat && IF_FLAT) };
    publishLengths(root, { ...Object.fromEntries(rows), ...exceptions });
  });
}
