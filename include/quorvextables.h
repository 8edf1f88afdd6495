/* Recordings of a power-quality analyser as tables: columns with names, units and times, handed out
 * batch by batch through the Arrow C data interface, which pandas, polars, DuckDB, R and others
 * read without copying.
 *
 * The rules:
 *  - Texts are UTF-8 and end in NUL. Paths are as Quorvex64 takes them: in the system's own
 * encoding (on Windows that of the code page), 511 bytes at the most.
 *  - A call that fails says why in `error`: a text of at most `error_room` bytes with its NUL,
 * empty on success. Where `error` is null or `error_room` 0, nobody is told.
 *  - A recording that is open belongs to one thread at a time. Different ones, and streams, are
 *    independent of each other; a stream too belongs to one thread at a time.
 *  - What is handed out as `const char*` lives as long as the recording is open.
 *  - Null where something is expected is an error, never a crash.
 *  - No exception leaves the library, and nothing is printed.
 *
 * An example, without checks:
 *
 *   QuorvexTables* tables = QuorvexTablesOpen("R0001GEN.REC", error, sizeof error);
 *   const char* const columns[] = {"record", "LAST_TIME", "VOLTAGES/U[u1]/rms/rms"};
 *   struct ArrowArrayStream stream;
 *   QuorvexTablesRead(tables, "records", columns, 3, NULL, &stream, error, sizeof error);
 *   QuorvexTablesClose(tables);
 *   struct ArrowArray batch;
 *   while (stream.get_next(&stream, &batch) == 0 && batch.release != NULL) {
 *     ... batch.children[2]->buffers[1] are batch.length floats ...
 *     batch.release(&batch);
 *   }
 *   stream.release(&stream);
 */
#ifndef QUORVEXTABLES_H
#define QUORVEXTABLES_H

#include <stdint.h>

#ifndef _WIN32
#define QUORVEXTABLES_API __attribute__((visibility("default")))
#elif defined(QUORVEXTABLES_BUILD)
#define QUORVEXTABLES_API __declspec(dllexport)
#elif defined(QUORVEXTABLES_STATIC)
#define QUORVEXTABLES_API
#else
#define QUORVEXTABLES_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The Arrow C data interface and the C stream interface, as published. Whoever includes another
 * header with them first has them once. */
#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;
  void (*release)(struct ArrowSchema*);
  void* private_data;
};

struct ArrowArray {
  int64_t length;
  int64_t null_count;
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);
  void* private_data;
};

#endif /* ARROW_C_DATA_INTERFACE */

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

struct ArrowArrayStream {
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*);
  void* private_data;
};

#endif /* ARROW_C_STREAM_INTERFACE */

/* An open recording: its head and its settings were read, no record was. */
typedef struct QuorvexTables QuorvexTables;

/* One column of a table. */
typedef struct QuorvexTablesColumn {
  const char* name;    /* in its table: "VOLTAGES/U[u1]/rms/max", "u1" */
  const char* path;    /* of the element inside the record; empty for what is none ("record") */
  const char* type;    /* "int32", "int64", "float" (32 bits), "double", "text", "time" */
  const char* format;  /* the same for Arrow: "i", "l", "f", "g", "u", "tsu:" */
  const char* unit;    /* "V"; empty where there is none or it is not known */
  const char* meaning; /* in words; may be empty */
} QuorvexTablesColumn;

/* What is read of a table. Null stands for all zeros. */
typedef struct QuorvexTablesRange {
  uint64_t first;             /* record, counted from 1; 0: from the first */
  uint64_t last;              /* inclusive; 0: to the last */
  int32_t to_utc;             /* not 0: times are shifted to UTC, and say so ("tsu:UTC") */
  int32_t utc_offset_minutes; /* by which the instrument's clock is ahead of UTC: +01:00 is 60 */
} QuorvexTablesRange;

/* The version of this library, as QuorvexGetVersion: 3744 is 3.7.44. */
QUORVEXTABLES_API int32_t QuorvexTablesGetVersion(void);

/* Opens a recording. A setting file beside it is used as in conversions. Null where it cannot be
 * read, ends inside its head, or is of an unknown type. */
QUORVEXTABLES_API QuorvexTables* QuorvexTablesOpen(const char* path, char* error,
                                                   uint32_t error_room);

/* Streams that were begun stay good. Null is left alone. */
QUORVEXTABLES_API void QuorvexTablesClose(QuorvexTables* tables);

/* The tables: `file`, `settings`, `records` and one for each kind of list. A table is there even
 * where it has no rows. A number out of range gives null or 0. */
QUORVEXTABLES_API int32_t QuorvexTablesCount(const QuorvexTables* tables);
QUORVEXTABLES_API const char* QuorvexTablesName(const QuorvexTables* tables, int32_t table);
QUORVEXTABLES_API const char* QuorvexTablesMeaning(const QuorvexTables* tables, int32_t table);
QUORVEXTABLES_API int32_t QuorvexTablesColumnCount(const QuorvexTables* tables, int32_t table);
/* 0 where there is no such column; `column` is not touched then. */
QUORVEXTABLES_API int32_t QuorvexTablesGetColumn(const QuorvexTables* tables, int32_t table,
                                                 int32_t number, QuorvexTablesColumn* column);

/* Begins to read a table: the columns named, in that order, or all of them where `columns` is null.
 * What is not asked for is not decoded. Each batch is a struct array with a child a column, of
 * about a megabyte, or of a record where that is more. Missing values are null; of floats they are
 * NaN besides. The metadata of a column are "path", "unit" and "meaning", as far as there are some.
 *
 * 0 on success; then `stream` is the caller's, to be released by its release. It opens the
 * recording anew at its first batch: get_next says EIO where it cannot be read or is another one by
 * then, and ENOMEM, each with a text in get_last_error. Not 0 where something is null, or there is
 * no such table or column; `stream` is not touched then. */
QUORVEXTABLES_API int32_t QuorvexTablesRead(const QuorvexTables* tables, const char* table,
                                            const char* const* columns, int32_t column_count,
                                            const QuorvexTablesRange* range,
                                            struct ArrowArrayStream* stream, char* error,
                                            uint32_t error_room);

#ifdef __cplusplus
}
#endif

#endif
