// SPDX-License-Identifier: Apache-2.0
#include "bench/ChildProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <vector>

extern char **environ;

double cpuSecondsOf(const QByteArrayList &command)
{
    std::vector<char *> arguments;
    arguments.reserve(size_t(command.size()) + 1);
    for (const QByteArray &argument : command)
        arguments.push_back(
            const_cast<char *>(argument.constData())); // the C interface asks for it
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failure
        = posix_spawnp(&child, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage usage {};
    if (failure != 0 || wait4(child, &status, 0, &usage) != child || status != 0)
        return -1.0;
    const auto seconds
        = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) * 1e-6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}
