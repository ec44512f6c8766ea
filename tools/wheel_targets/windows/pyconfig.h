// pyconfig.h of CPython for 64-bit Windows, because the installed one describes the build machine. Covers what the
// limited API needs.
#ifndef Py_CONFIG_H
#define Py_CONFIG_H

#define MS_WIN32
#define MS_WIN64
#define MS_WINDOWS
#define NT_THREADS
#define WITH_THREAD

// Functions and data are imported from python3.dll.
#define HAVE_DECLSPEC_DLL
#define MS_COREDLL
#define Py_ENABLE_SHARED

typedef long long Py_ssize_t;
#define HAVE_PY_SSIZE_T 1
#define PY_SSIZE_T_MAX LLONG_MAX

#define SIZEOF_SHORT 2
#define SIZEOF_INT 4
#define SIZEOF_LONG 4
#define SIZEOF_LONG_LONG 8
#define SIZEOF_VOID_P 8
#define SIZEOF_SIZE_T 8
#define SIZEOF_TIME_T 8
#define SIZEOF_WCHAR_T 2
#define SIZEOF_FLOAT 4
#define SIZEOF_DOUBLE 8
#define SIZEOF_PID_T SIZEOF_INT
#define ALIGNOF_MAX_ALIGN_T 8

#define HAVE_SYS_TYPES_H 1
#define HAVE_SYS_STAT_H 1
#define HAVE_STDDEF_H 1
#define HAVE_WCHAR_H 1
#define DOUBLE_IS_LITTLE_ENDIAN_IEEE754

#endif
