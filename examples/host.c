/*
 * A host that links the library: says what a recording is and converts it, with progress.
 *
 *   host R0010RVC.REC                  writes R0010RVC.REC.xml
 */
#include <quorvex64.h>
#include <stdio.h>
#include <string.h>

static int32_t QUORVEX_CALL ShowProgress(float fraction) {
  fprintf(stderr, "\r%3.0f %%", 100.0 * (double)fraction);
  return fraction > 2 ? -1 : 0; /* a negative result stops; the header says where it must */
}

static int Exists(const char* path) {
  FILE* file = fopen(path, "rb");
  if (file != NULL) fclose(file);
  return file != NULL;
}

int main(int argc, char** argv) {
  char line[512]; /* the line is never longer */
  char document[512];
  const char* recording = argv[argc - 1];

  if (argc != 2 || strlen(recording) + sizeof ".xml" > sizeof document) {
    fprintf(stderr, "usage: host RECORDING\n");
    return 2;
  }
  if (QuorvexGetVersion() < QUORVEX_VERSION) {
    fprintf(stderr, "the library is older than this program\n");
    return 1;
  }
  QuorvexGetRecordInfo(recording, line);
  printf("%s: %s\n", recording, line[0] != '\0' ? line : "(no description)");

  /* The call itself never fails: what counts is whether there is a document afterwards. So none may
     be there before. */
  snprintf(document, sizeof document, "%s.xml", recording);
  remove(document);
  QuorvexConvert(recording, document, ShowProgress);
  if (!Exists(document)) {
    fprintf(stderr, "%s: %s\n", recording,
            Exists(recording) ? "no recording, or its document cannot be written" : "not found");
    return 1;
  }
  printf("wrote %s\n", document);
  return 0;
}
