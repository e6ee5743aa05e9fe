#pragma once
// The fakes of the host interfaces and the fixture that installs them now ship
// as Varnel::testing; this header keeps the suites' includes working.

#include "varnel/testing/Fakes.h"
#include "varnel/testing/HostFixture.h"
