#pragma once

// A full disk for what runs in a child process: no file may grow past limite bytes there, and
// with SIGXFSZ ignored a write beyond fails with EFBIG, as on a full disk. The child's own
// exit code comes back; 255 when it did not end by itself.

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kv {

template <typename F>
int ConDiscoPieno(rlim_t limite, F &&figlio)
{
    const pid_t pid = fork();
    if (pid == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit r{limite, limite};
        _exit(setrlimit(RLIMIT_FSIZE, &r) == 0 ? figlio() : 254);
    }
    int stato = 0;
    if (pid < 0 || waitpid(pid, &stato, 0) != pid || !WIFEXITED(stato))
        return 255;
    return WEXITSTATUS(stato);
}

} // namespace kv
