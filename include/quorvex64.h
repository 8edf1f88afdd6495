/*
 * Quorvex64: turns the binary record files of a portable three-phase power-quality analyser into
 * XML documents, and answers small questions about them.
 *
 * Conventions that hold for every function:
 *
 *  1. Calls are synchronous and work from a cold library: there is nothing to initialise, and
 *     nothing is kept between calls but a count of the bytes handed out.
 *  2. Paths are NUL-terminated 8-bit strings: the active code page on Windows, the file
 *     system's own bytes elsewhere. Both '/' and '\' separate directories. A path longer than
 *     511 bytes counts as a file that cannot be opened.
 *  3. Nothing reports an error. A file that cannot be opened, a file of an unknown type and an
 *     output that cannot be created all leave no document behind, without a message. A null path
 *     does nothing; queries then answer 0. A host that wants to explain looks at the files
 *     itself.
 *  4. Damaged files: whatever a file holds, a call ends, stays inside its memory and gives back
 * what it took. A recording that is cut short converts as far as it goes, into a well-formed
 * document as long as its free texts are.
 *  5. Threads: functions may run on several threads at once, for different files. Two conversions
 *     into the same document at once are the caller's mistake. A progress callback runs on
 *     the thread of its conversion.
 *  6. Floating point: a call computes under settings of its own (no exception interrupts, round to
 *     nearest) and gives the host's back as they were. A progress callback runs under the host's;
 *     what it changes in them stays changed.
 *  7. Ownership: only the two buffer functions hand out memory, and only the two destroy functions
 *     take it back. Every other pointer stays the caller's and is not kept.
 *
 * A document is written in place, from the first byte to the last. A host that must not show half a
 * document converts to a temporary name and renames. While a disk is full a conversion waits for
 * room.
 */
#ifndef QUORVEX64_H
#define QUORVEX64_H

#include <stdint.h>

/* The version of this header. The build takes its own from here: 3744 is release 3.7.44. */
#define QUORVEX_VERSION 3744

#if defined(_WIN32)
#define QUORVEX_CALL __cdecl
#if defined(QUORVEX_STATIC)
#define QUORVEX_API
#elif defined(QUORVEX_BUILD)
#define QUORVEX_API /* exported by name, through the module definition file */
#else
#define QUORVEX_API __declspec(dllimport)
#endif
#else
#define QUORVEX_CALL
#define QUORVEX_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Progress of a conversion: `fraction` is the part done so far. A negative result stops the
 * conversion after the record just written; the document is closed properly and holds what was
 * converted until then. The fraction is a guide, not a promise. It passes 1 where the file grows
 * meanwhile, and is infinite for a range that ends just before it begins (3 to 2). Sizes count in
 * 32 bits: of a file of 4 GiB and more it may be anything.
 *
 * Called after each record by the record types 1, 2, 3, 7, 8, 14, 16 and 17, by no other.
 *
 * A general recording (type 1) of an unknown profile has no records to write, but the callback is
 * called for every record number of the range all the same. Up to 0xFFFFFFFF, as QuorvexConvert
 * goes, that is for ever: the numbers come round, and only a negative result ends the call. The
 * fraction means nothing there: it is infinite as a rule, and once in 2^32 calls not a number. It
 * passes 2 for no sound recording, so a callback that stops there ends such a call.
 */
typedef int32_t(QUORVEX_CALL* QuorvexProgress)(float fraction);

/* The version of the library that runs: QUORVEX_VERSION of the header it was built with. */
QUORVEX_API int32_t QUORVEX_CALL QuorvexGetVersion(void);

/*
 * The file version, the first 32-bit word of a record file. 0 for a file that cannot be opened, so
 * check first that it is there; of a file shorter than four bytes, what is there.
 */
QUORVEX_API int32_t QUORVEX_CALL QuorvexGetFileVersion(const char* path);

/*
 * Converts a whole record file of any type.
 *
 *   path         the record file
 *   output_path  the document, created or overwritten; null writes beside the record file, its
 *                extension replaced by ".xml" (appended where it has none)
 *   progress     null for none
 *
 * An output path that leads to the record file itself, directly or through a link, writes nothing.
 *
 *   QuorvexConvert("R0007GEN.REC", "january.xml", NULL);
 */
QUORVEX_API void QUORVEX_CALL QuorvexConvert(const char* path, const char* output_path,
                                             QuorvexProgress progress);

/*
 * Converts the records `first_record` to `last_record` of a general recording (type 1), counted
 * from 1, the last one included. A range beyond the end gives a document without records. Files of
 * all other types are converted whole.
 *
 *   QuorvexConvertPerPartes("R0007GEN.REC", NULL, 3, 5, NULL);    (records 3, 4 and 5)
 */
QUORVEX_API void QUORVEX_CALL QuorvexConvertPerPartes(const char* path, const char* output_path,
                                                      uint32_t first_record, uint32_t last_record,
                                                      QuorvexProgress progress);

/*
 * Number of records of a general recording, rounded to whole records of 40448 bytes (the full
 * profile, even for recordings of another). 0 for every other type and for a file that cannot be
 * opened. Negative (-2147483648) for a general recording that ends inside its head: treat any
 * negative count as no records.
 */
QUORVEX_API int32_t QUORVEX_CALL QuorvexGetNumberOfRecords(const char* path);

/*
 * One line that describes a record file, for file lists: the type number and fields in single
 * quotes. `text` is the caller's and holds 512 bytes at least; the line never exceeds 511 bytes and
 * its terminator. It may be the buffer that holds the path: the line is written last. Empty where
 * the name does not end in ".REC" (in any case) and for types without a description.
 *
 *   1, 16   start, end, interval ("10 Min "; the end is an estimate until a setting file tells it)
 *   2       start, end, trigger, level, slope, duration, pretrigger
 *   5       start, end, trigger, then trigger level and envelope of voltage, neutral voltage,
 *           current and neutral current
 *   6       time
 *   14      start, end, level, slope, duration, pretrigger, and a number without quotes
 *   17      start, end, trigger, level, duration, pretrigger
 *   18      start, end
 *
 * Times read "07.Mar.2024 14:05:09.123", levels "110.0% (253.0V)" or "12.50V"; "-" stands for none.
 */
QUORVEX_API void QUORVEX_CALL QuorvexGetRecordInfo(const char* path, char* text);

/*
 * A zeroed block of 30720 bytes, and one of `count` times 404480 bytes (the product in 32 bits). No
 * conversion writes into them. Never null: while there is no memory, the call waits.
 */
QUORVEX_API void* QUORVEX_CALL QuorvexCreateBufHeadParamsToRAM(void);
QUORVEX_API void* QUORVEX_CALL QuorvexCreateBufGenRecToRAM(uint32_t count);

/*
 * Give such a block back, either function either block. Null is left alone, and so is a pointer
 * without the library's mark in the four bytes before it (which are read).
 */
QUORVEX_API void QUORVEX_CALL QuorvexDestroyBufHeadParamsToRAM(void* buffer);
QUORVEX_API void QUORVEX_CALL QuorvexDestroyBufGenRecToRAM(void* buffer);

/* Entry points kept for hosts that look them up; they do nothing and look at no argument. */
QUORVEX_API void QUORVEX_CALL QuorvexConvertGenRecToFile(void);
QUORVEX_API void QUORVEX_CALL QuorvexConvertGenRecToRAM(void);
QUORVEX_API void QUORVEX_CALL QuorvexConvertHeadParamsToFile(void);
QUORVEX_API void QUORVEX_CALL QuorvexConvertHeadParamsToRAM(void);

#ifdef __cplusplus
}
#endif

#endif
