// Terminals for other programs.

#pragma once
#pragma clang system_header

struct termios;
struct winsize;

#ifdef __cplusplus
extern "C" {
#endif

/// Forks, with the child on a new terminal. The parent is given its other end; name, settings and
/// size may be null.
int forkpty(int *terminal, char *name, struct termios *settings, struct winsize *size);

#ifdef __cplusplus
}
#endif
