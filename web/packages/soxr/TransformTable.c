/* The transform of the sample rate converter, and the table through which it is called. The
 * library's own table holds functions under other types than they are called with, which traps in
 * WebAssembly: here every entry has the type that it is called with. */
#include <stdlib.h>

#include "filter.h"
#define FFT4G_FLOAT
#include "fft4g.c"

typedef void (*Entry)(void);

static void* noSetup(int length) {
  (void)length;
  return NULL;
}

static void nothingToDelete(void* setup) {
  (void)setup;
}

static void transformForward(int length, void* setup, void* samples, void* scratch) {
  (void)setup;
  (void)scratch;
  lsx_safe_rdft_f(length, 1, samples);
}

static void transformBackward(int length, void* setup, void* samples, void* scratch) {
  (void)setup;
  (void)scratch;
  lsx_safe_rdft_f(length, -1, samples);
}

static void convolve(int length, void* setup, void* samples, void const* coefficients) {
  (void)setup;
  lsx_ordered_convolve_f(length, NULL, samples, coefficients);
}

static void convolvePart(int length, void* samples, void const* coefficients) {
  lsx_ordered_partial_convolve_f(length, samples, coefficients);
}

static int backwardGain(void) {
  return 2;
}

static void inOrderAlready(int length, void* setup, void* samples, void* scratch) {
  (void)length;
  (void)setup;
  (void)samples;
  (void)scratch;
}

static int noFlags(void) {
  return 0;
}

/* In the order of the library's macros. */
Entry _soxr_rdft32_cb[] = {
    (Entry)noSetup,          (Entry)noSetup,
    (Entry)nothingToDelete,  (Entry)transformForward,
    (Entry)transformForward, (Entry)transformBackward,
    (Entry)transformBackward, (Entry)convolve,
    (Entry)convolvePart,     (Entry)backwardGain,
    (Entry)inOrderAlready,   (Entry)malloc,
    (Entry)calloc,           (Entry)free,
    (Entry)noFlags,
};
