/* The public header as a C compiler reads it: every function is declared and links. */
#include "quorvex64.h"

int main(void) {
  void* buffer = QuorvexCreateBufGenRecToRAM(0);
  QuorvexDestroyBufGenRecToRAM(buffer);
  QuorvexDestroyBufHeadParamsToRAM(0);
  QuorvexConvertGenRecToFile();
  QuorvexConvertGenRecToRAM();
  QuorvexConvertHeadParamsToFile();
  QuorvexConvertHeadParamsToRAM();
  return QuorvexGetVersion() == 3744 ? 0 : 1;
}
