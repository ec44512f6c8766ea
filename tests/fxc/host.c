// Calls D3DCompile for each file and prints "NAME ok|failed SECONDS BYTES", after a failure also the error messages.
// Built for Windows and run by Wine, because the compiler is a DLL. Declares only the used part of the blob interface.
#include <windows.h>
#include <stdio.h>
#include <stdlib.h>

typedef struct Blob Blob;
struct Blob {
    const struct {
        void *query, *add, *release;
        void *(WINAPI *data)(Blob*);
        SIZE_T (WINAPI *size)(Blob*);
    } *methods;
};
typedef HRESULT(WINAPI *Compile)(const void*, SIZE_T, const char*, const void*, void*, const char*, const char*, UINT,
                                 UINT, Blob**, Blob**);

// Row-major matrices, older syntax allowed, highest optimization level: the flags that Unreal uses.
enum { FLAGS = 0x9008 };

static double processor_time(void) {
    FILETIME made, ended, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &made, &ended, &kernel, &user);
    return (((ULONGLONG)user.dwHighDateTime << 32) + user.dwLowDateTime) / 1e7;
}

int main(int count, char **files) {
    Compile compile = (Compile)(void*)GetProcAddress(LoadLibraryA("d3dcompiler_47.dll"), "D3DCompile");
    if (!compile) return 2;
    for (int i = 1; i < count; i++) {
        static char text[1 << 22];
        FILE *file = fopen(files[i], "rb");
        if (!file) return 3;
        SIZE_T size = fread(text, 1, sizeof text, file);
        fclose(file);
        Blob *code = 0, *words = 0;
        double start = processor_time();
        HRESULT result = compile(text, size, files[i], 0, 0, "main", "ps_5_0", FLAGS, 0, &code, &words);
        printf("%s %s %.2f %u\n", files[i], result < 0 ? "failed" : "ok", processor_time() - start,
               code ? (unsigned)code->methods->size(code) : 0);
        if (result < 0 && words) printf("%.2000s\n", (char*)words->methods->data(words));
        fflush(stdout);
    }
    return 0;
}
