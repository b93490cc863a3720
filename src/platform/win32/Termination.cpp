#include "Termination.h"

namespace tvx::platform {

// Windows sends WM_QUERYENDSESSION/WM_CLOSE to the windows; the UI closes in order itself.
int terminationDescriptor()
{
    return -1;
}

void acknowledgeTermination() {}

} // namespace tvx::platform
