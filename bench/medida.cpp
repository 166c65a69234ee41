// medida CMD ARGS...: runs the command, then prints "wall_s=<seconds> maxrss_kb=<kB>" to stderr.
#include <chrono>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: medida CMD [ARGS...]\n");
        return 2;
    }
    const auto inicio = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid == 0) {
        execvp(argv[1], argv + 1);
        std::perror("execvp");
        _exit(127);
    }
    int estado = 0;
    rusage uso{};
    wait4(pid, &estado, 0, &uso);
    const double s =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count();
    std::fprintf(stderr, "wall_s=%.6f maxrss_kb=%ld\n", s, uso.ru_maxrss);
    return WIFEXITED(estado) ? WEXITSTATUS(estado) : 1;
}
