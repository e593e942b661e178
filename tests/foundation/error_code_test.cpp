#include "tvl/error_code.h"

#include <string>

#include "tests/foundation/fresh_singletons.h"

namespace {

using TVL::ErrorCode;

class ErrorCodes : public FreshSingletons {
  protected:
    static ErrorCode& Registry() { return *ErrorCode::GetInstance(); }
};

TEST_F(ErrorCodes, AFreshRegistryKnowsSuccessAndIsItselfNotFound) {
    const ErrorCode& success = *Registry().GetByValue(0);
    EXPECT_EQ(success.GetIdentifier(), "SUCCESS");
    EXPECT_EQ(success.GetMessage(), "The function returned successfully");
    EXPECT_EQ(success.GetType(), 4);
    EXPECT_EQ(Registry().GetByValue(4711), &Registry());
    EXPECT_EQ(Registry().GetByIdentifier("NULL"), &Registry());
    EXPECT_EQ(Registry().Register(nullptr), &Registry());
    EXPECT_EQ(Registry().GetValue(), -1);
    EXPECT_EQ(Registry().GetIdentifier(), "NOTFOUND");
    EXPECT_EQ(Registry().GetType(), 1);
    EXPECT_EQ(Lines(),
              "(WARNING): Errorcode not found. value: 4711\n"
              "(ERROR): Return value: (Error code not found)\n");
}

TEST_F(ErrorCodes, DeclareRegistersOnceKeepsTheFirstTextsAndLogsByTheirSeverity) {
    const std::int32_t first = *Registry().Declare("A", "first", ErrorCode::kWarning);
    EXPECT_EQ(Lines(),
              "(NOTICE): \tRegister Code\n(NOTICE): \tnew_value: 1024\n"
              "(NOTICE): \tnew_identifier: A\n(NOTICE): \tnew_message: first\n"
              "(NOTICE): \tnew_type: 2\n(WARNING): Return value: first\n");
    ErrorCode* const again = Registry().Declare("A", "second", ErrorCode::kCritical);
    EXPECT_TRUE(*again == first && *again == 1024);
    EXPECT_EQ(again->GetMessage(), "first");
    EXPECT_EQ(again->GetType(), ErrorCode::kWarning);
    for (std::int32_t type = 0; type <= 4; ++type) {
        EXPECT_EQ(TVL::Report({std::to_string(type).c_str(), "text", type}), 1025 + type);
        const bool isMild = type == ErrorCode::kWarning || type == ErrorCode::kNotice;
        EXPECT_TRUE(Lines().ends_with(isMild ? "(WARNING): Return value: text\n"
                                             : "(ERROR): Return value: text\n"));
    }
    EXPECT_TRUE(Registry().HasValue(1029));
    EXPECT_FALSE(Registry().HasValue(1030));
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

TEST_F(ErrorCodes, AssignmentCopiesTheCodeAndNotTheRegistry) {
    ErrorCode registry;
    ErrorCode code("A", "a", ErrorCode::kNotice);
    registry = code;
    EXPECT_TRUE(registry == code && registry.HasIdentifier("SUCCESS"));
    const ErrorCode copy(Registry());
    EXPECT_TRUE(copy == Registry() && !copy.HasIdentifier("SUCCESS"));
}

TEST_F(ErrorCodes, APlacedRegistryTakesOverTheSequence) {
    ErrorCode outside;
    EXPECT_EQ(TVL::Report({"A", "a", ErrorCode::kError}), 1024);
    Place(outside);
    EXPECT_EQ(TVL::Report({"B", "b", ErrorCode::kError}), 1024);
    EXPECT_TRUE(outside.HasIdentifier("B") && !outside.HasIdentifier("A"));
}

}  // namespace
