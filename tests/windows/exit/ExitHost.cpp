// Loads a host DLL whose static library objects run threads, starts their work and ends:
//   ExitHost DLL exit     returns from main with the DLL loaded; the system ends the threads
//                         and then destroys the DLL's static objects, whose waits must end
//   ExitHost DLL unload   unloads the DLL first (its objects stop their threads and wait for
//                         them as usual), then returns from main
// Prints "started" once the DLL's threads run, and exits with 0 when all went as planned.
#include <windows.h>

#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
    if (argc != 3) {
        fprintf(stderr, "usage: ExitHost DLL exit|unload\n");
        return 2;
    }
    HMODULE dll = LoadLibraryA(argv[1]);
    if (dll == nullptr) {
        fprintf(stderr, "cannot load %s (error %lu)\n", argv[1], GetLastError());
        return 1;
    }
    typedef bool (*StartWork)(const char*);
    StartWork startWork =
        reinterpret_cast<StartWork>(reinterpret_cast<void*>(GetProcAddress(dll, "startWork")));
    char temp[MAX_PATH];
    DWORD n = GetTempPathA(sizeof temp, temp);
    if (startWork == nullptr || n == 0 || n >= sizeof temp) {
        fprintf(stderr, "no startWork or no temporary folder\n");
        return 1;
    }
    char missing[MAX_PATH + 64];
    snprintf(missing, sizeof missing, "%szbBase-no-such-folder-%lu", temp, GetCurrentProcessId());
    if (!startWork(missing)) {
        fprintf(stderr, "the DLL's threads did not start\n");
        return 1;
    }
    printf("started\n");
    fflush(stdout);
    if (strcmp(argv[2], "unload") == 0 && !FreeLibrary(dll)) {
        fprintf(stderr, "cannot unload %s\n", argv[1]);
        return 1;
    }
    return 0;
}
