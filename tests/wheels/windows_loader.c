// Loads CPython extension modules on Windows and calls their entries: loader.exe quillgen.pyd PyInit_quillgen ...
#include <stdio.h>
#include <windows.h>

int main(int count, char** words) {
    for (int i = 1; i + 1 < count; i += 2) {
        const HMODULE module = LoadLibraryA(words[i]);
        if (module == NULL) {
            printf("%s: not loaded, error %lu\n", words[i], GetLastError());
            return 1;
        }
        void* (*entry)(void) = (void* (*)(void))GetProcAddress(module, words[i + 1]);
        if (entry == NULL) {
            printf("%s: no %s\n", words[i], words[i + 1]);
            return 1;
        }
        printf("%s: %s called, gave %s\n", words[i], words[i + 1], entry() == (void*)0x51 ? "a definition" : "nothing");
    }
    return 0;
}
