#include "tvl/error_code.h"

#include <string>

#include "tests/foundation/fresh_singletons.h"

namespace {

using TVL::ErrorCode;

class ErrorCodes : public FreshSingletons {
  protected:
    static ErrorCode& Registry() { return *ErrorCode::GetInstance(); }
    static std::string Told(const ErrorCode& code) {
        return std::to_string(code.GetValue()) + ' ' + code.GetIdentifier() + ", " +
               code.GetMessage() + ", " + std::to_string(code.GetType());
    }
};

TEST_F(ErrorCodes, AFreshRegistryKnowsSuccessAndIsItselfNotFound) {
    EXPECT_EQ(Told(*Registry().GetByValue(0)), "0 SUCCESS, The function returned successfully, 4");
    EXPECT_EQ(Registry().GetByValue(4711), &Registry());
    EXPECT_EQ(Registry().GetByIdentifier("NULL"), &Registry());
    EXPECT_EQ(Registry().Register(nullptr), &Registry());
    EXPECT_EQ(Told(Registry()), "-1 NOTFOUND, (Error code not found), 1");
    EXPECT_EQ(Lines(),
              "(WARNING): Errorcode not found. value: 4711\n"
              "(ERROR): Return value: (Error code not found)\n");
    // A copy is of the code and not of the registry.
    ErrorCode registry;
    ErrorCode code("A", "a", ErrorCode::kNotice);
    registry = code;
    EXPECT_TRUE(registry == code && registry.HasIdentifier("SUCCESS"));
    const ErrorCode copy(Registry());
    EXPECT_TRUE(copy == Registry() && !copy.HasIdentifier("SUCCESS"));
}

TEST_F(ErrorCodes, DeclareRegistersOnceKeepsTheFirstTextsAndLogsByTheirSeverity) {
    const std::int32_t first = *Registry().Declare("A", "first", ErrorCode::kWarning);
    EXPECT_EQ(Lines(),
              "(NOTICE): \tRegister Code\n(NOTICE): \tnew_value: 1024\n"
              "(NOTICE): \tnew_identifier: A\n(NOTICE): \tnew_message: first\n"
              "(NOTICE): \tnew_type: 2\n(WARNING): Return value: first\n");
    ErrorCode* const again = Registry().Declare("A", "second", ErrorCode::kCritical);
    EXPECT_EQ(*again, first);
    EXPECT_EQ(Told(*again), "1024 A, first, 2");
    for (std::int32_t type = 0; type <= 4; ++type) {
        EXPECT_EQ(TVL::Report({std::to_string(type).c_str(), "text", type}), 1025 + type);
        const bool isMild = type == ErrorCode::kWarning || type == ErrorCode::kNotice;
        EXPECT_TRUE(Lines().ends_with(isMild ? "(WARNING): Return value: text\n"
                                             : "(ERROR): Return value: text\n"));
    }
    EXPECT_TRUE(Registry().HasValue(1029) && !Registry().HasValue(1030));
    // A placed registry takes over the sequence.
    ErrorCode outside;
    Place(outside);
    EXPECT_EQ(TVL::Report({"B", "b", ErrorCode::kError}), 1024);
    EXPECT_TRUE(outside.HasIdentifier("B") && !outside.HasIdentifier("A"));
    TakeBack<ErrorCode>();
}

TEST_F(ErrorCodes, RegisterTakesACopyOfWhatIsNew) {
    ErrorCode first("A", "a", ErrorCode::kError);
    ErrorCode sameIdentifier("A", "another", ErrorCode::kError);
    ErrorCode sameValue(first);
    EXPECT_EQ(Registry().Register(&first), &first);
    EXPECT_NE(Registry().GetByIdentifier("A"), &first);
    EXPECT_TRUE(*Registry().GetByIdentifier("A") == first);

    EXPECT_EQ(Registry().Register(&sameIdentifier)->GetMessage(), "a");
    EXPECT_TRUE(Lines().ends_with(
        "(ERROR): \tError: Trying to register error code with a non-unique identifier: A\n"
        "(ERROR): \tReturn value: a\n"));
    EXPECT_EQ(Registry().Register(&sameValue)->GetIdentifier(), "ERRORCODE_NONUNIQUEVALUE");
    EXPECT_FALSE(Registry().HasValue(sameIdentifier));

    EXPECT_EQ(first.Register(&sameIdentifier)->GetIdentifier(), "ERRORCODE_NONCONTAINER");
    EXPECT_EQ(first.Declare("B", "b", ErrorCode::kError), &Registry());
    EXPECT_FALSE(first.HasIdentifier("A") || first.HasIdentifier("B"));
}

}  // namespace
