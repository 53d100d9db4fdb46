#pragma once

#include "support/fakeapplications.h"
#include "support/fakefacts.h"
#include "support/fakeremotesystems.h"
#include "support/fakerunnerobjects.h"

namespace Tamrix::Test {

/// The runner of tests: facts are public members, and what needs an application gives the canned
/// answers, which fail by default. Calls that change something are written down. Each part of the
/// interface is a fake of its own.
class FakeRunner : public FakeFacts,
                   public FakeApplications,
                   public FakeObjects,
                   public FakeRemoteSystems {};

}  // namespace Tamrix::Test
