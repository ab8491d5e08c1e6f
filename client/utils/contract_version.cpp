#include "host_api.h"

int host::contractVersion() { return CONTRACT_VERSION; }
