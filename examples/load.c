/*
 * A host that loads the library while it runs, and does without it where there is none.
 *
 *   load R0010RVC.REC out.xml          writes out.xml
 */
#define QUORVEX_STATIC /* the header's types only: nothing is linked */
#include <quorvex64.h>
#include <stdio.h>

#ifdef _WIN32
#include <windows.h>
typedef HMODULE Library;
static Library Load(void) { return LoadLibraryA("Quorvex64.dll"); }
static void* Find(Library library, const char* name) {
  return (void*)GetProcAddress(library, name);
}
static void Unload(Library library) { FreeLibrary(library); }
#else
#include <dlfcn.h>
typedef void* Library;
static Library Load(void) { return dlopen("libQuorvex64.so.3", RTLD_NOW); }
static void* Find(Library library, const char* name) { return dlsym(library, name); }
static void Unload(Library library) { dlclose(library); }
#endif

typedef int32_t(QUORVEX_CALL* VersionFunction)(void);
typedef void(QUORVEX_CALL* ConvertFunction)(const char*, const char*, QuorvexProgress);

int main(int argc, char** argv) {
  Library library = Load();
  VersionFunction get_version;
  ConvertFunction convert;

  if (argc != 3) {
    fprintf(stderr, "usage: load RECORDING DOCUMENT\n");
    return 2;
  }
  if (library == NULL) {
    fprintf(stderr, "Quorvex64 is not installed\n");
    return 1;
  }
  get_version = (VersionFunction)Find(library, "QuorvexGetVersion");
  convert = (ConvertFunction)Find(library, "QuorvexConvert");
  if (get_version == NULL || convert == NULL) {
    fprintf(stderr, "this is another library\n");
    return 1;
  }
  printf("Quorvex64 %d\n", (int)get_version());
  convert(argv[1], argv[2], NULL);
  Unload(library);
  return 0;
}
