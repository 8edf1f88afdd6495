/* The public headers as a C compiler reads them: every function is declared and links, and takes
 * null for what it is. */
#include "quorvex64.h"
#include "quorvextables.h"

int main(void) {
  void* buffer = QuorvexCreateBufGenRecToRAM(0);
  QuorvexDestroyBufGenRecToRAM(buffer);
  QuorvexDestroyBufHeadParamsToRAM(0);
  QuorvexConvertGenRecToFile();
  QuorvexConvertGenRecToRAM();
  QuorvexConvertHeadParamsToFile();
  QuorvexConvertHeadParamsToRAM();
  char error[80] = "";
  QuorvexTablesColumn column;
  struct ArrowArrayStream stream;
  int wrong = QuorvexTablesOpen(0, error, sizeof error) != 0 || error[0] == '\0';
  wrong += QuorvexTablesRead(0, 0, 0, 0, 0, &stream, error, 4) == 0 || error[3] != '\0';
  wrong += QuorvexTablesCount(0) + QuorvexTablesColumnCount(0, 0);
  wrong += QuorvexTablesName(0, 0) != 0 || QuorvexTablesMeaning(0, 0) != 0;
  wrong += QuorvexTablesGetColumn(0, 0, 0, &column);
  QuorvexTablesClose(0);
  return QuorvexGetVersion() == 3744 && QuorvexTablesGetVersion() == 3744 ? wrong : 1;
}
