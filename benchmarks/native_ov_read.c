/* native_ov_read FILE RESULT: decodes a file with the system's own vorbisfile library, in the
   blocks the other benchmarks use, and writes the seconds it took. A program of the build machine.
 */

#include <dlfcn.h>
#include <stdio.h>
#include <time.h>

static long long state[512];

int main(int argc, char** argv) {
    void* library = dlopen("libvorbisfile.so.3", RTLD_NOW);
    if (argc != 3 || !library)
        return 1;
    int (*open)(const char*, void*) = (int (*)(const char*, void*))dlsym(library, "ov_fopen");
    long (*read)(void*, char*, int, int, int, int, int*) =
        (long (*)(void*, char*, int, int, int, int, int*))dlsym(library, "ov_read");
    if (!open || !read || open(argv[1], state) != 0)
        return 1;

    static char block[8000];
    int section;
    struct timespec start, end;
    clock_gettime(CLOCK_MONOTONIC, &start);
    while (read(state, block, sizeof block, 0, 2, 1, &section) > 0)
        continue;
    clock_gettime(CLOCK_MONOTONIC, &end);

    FILE* result = fopen(argv[2], "w");
    if (!result)
        return 1;
    fprintf(result, "%f s\n",
            (double)(end.tv_sec - start.tv_sec) + (double)(end.tv_nsec - start.tv_nsec) / 1e9);
    return fclose(result);
}
