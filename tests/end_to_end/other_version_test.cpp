#include "tests/end_to_end/command.h"
#include "tests/end_to_end/stage.h"
#include "tvl/adaptor_interface.h"

// A Core that was written for another version of the contract, in a process of its own.

namespace {

TEST_F(Command, TurnsAwayACoreOfAnotherVersionAndTellsBothNumbers) {
    const std::string another = std::string(PUPPET_CORES) + "/other_version";
    ExpectFailure(
        Run("record " + Write("walk.bvh", Walk(2)) + " --trace " + File("trace"), another),
        "the Core could not be attached (it is of another version");
    const std::string trace = Read(File("trace"));
    for (const std::string& line : {std::string("version mismatch trying to attach to CORE"),
                                    "CORE version: " + std::to_string(TVL::kInterfaceVersion + 1),
                                    "Adaptor version: " + std::to_string(TVL::kInterfaceVersion)})
        EXPECT_NE(trace.find("(ERROR): \t" + line + '\n'), std::string::npos) << trace;
}

}  // namespace
