#pragma once
// The networking fakes ship with Varnel::testing; this header keeps older includes working.

#include "varnel/testing/NetworkFakes.h"
