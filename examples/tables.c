/* The range of a column of a recording's table, through the Arrow C stream of QuorvexTables.
 *
 *   tables RECORDING TABLE COLUMN
 *   tables R0001GEN.REC records "VOLTAGES/U[u1]/rms/max"
 */
#include <quorvextables.h>
#include <stdio.h>
#include <string.h>

/* Goes through the batches of a stream with one column of floats. */
static int print_range(struct ArrowArrayStream* stream, const char* unit) {
  float least = 0, most = 0;
  long rows = 0, values = 0;
  struct ArrowArray batch;
  int problem;
  while ((problem = stream->get_next(stream, &batch)) == 0 && batch.release != NULL) {
    const float* column = (const float*)batch.children[0]->buffers[1];
    int64_t i;
    for (i = 0; i < batch.length; ++i) {
      if (!(column[i] == column[i])) continue; /* missing */
      if (values == 0 || column[i] < least) least = column[i];
      if (values == 0 || column[i] > most) most = column[i];
      ++values;
    }
    rows += (long)batch.length;
    batch.release(&batch);
  }
  if (problem != 0) {
    fprintf(stderr, "%s\n", stream->get_last_error(stream));
    return 1;
  }
  printf("%ld rows, %ld values, %g to %g %s\n", rows, values, (double)least, (double)most, unit);
  return 0;
}

/* The column by its name; its type is empty where there is none. */
static QuorvexTablesColumn find(const QuorvexTables* tables, const char* table, const char* name) {
  QuorvexTablesColumn column = {"", "", "", "", "", ""}, one;
  int32_t t, c;
  for (t = 0; t < QuorvexTablesCount(tables); ++t) {
    if (strcmp(QuorvexTablesName(tables, t), table) != 0) continue;
    for (c = 0; QuorvexTablesGetColumn(tables, t, c, &one); ++c) {
      if (strcmp(one.name, name) == 0) column = one;
    }
  }
  return column;
}

int main(int argc, char** argv) {
  char error[256];
  struct ArrowArrayStream stream;
  QuorvexTablesColumn column;
  QuorvexTables* tables;
  const char* const* names = (const char* const*)(argv + 3);
  int problem = 1;
  if (argc != 4) {
    fprintf(stderr, "usage: tables RECORDING TABLE COLUMN\n");
    return 2;
  }
  tables = QuorvexTablesOpen(argv[1], error, sizeof error);
  if (tables == NULL) {
    fprintf(stderr, "%s: %s\n", argv[1], error);
    return 1;
  }
  column = find(tables, argv[2], argv[3]);
  if (QuorvexTablesRead(tables, argv[2], names, 1, NULL, &stream, error, sizeof error) != 0) {
    fprintf(stderr, "%s: %s\n", argv[1], error);
  } else {
    if (strcmp(column.type, "float") == 0) {
      problem = print_range(&stream, column.unit);
    } else {
      fprintf(stderr, "%s is no column of floats\n", argv[3]);
    }
    stream.release(&stream);
  }
  QuorvexTablesClose(tables);
  return problem;
}
