#include "shell/shell_hooks.h"

namespace tl::shell {

ShellHooks &shellHooks()
{
    static ShellHooks hooks;
    return hooks;
}

} // namespace tl::shell
