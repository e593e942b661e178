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
    EXPECT_EQ(Trace(), "");

    ErrorCode* const missing = Registry().GetByValue(4711);
    EXPECT_EQ(missing, &Registry());
    EXPECT_EQ(missing->GetValue(), -1);
    EXPECT_EQ(missing->GetIdentifier(), "NOTFOUND");
    EXPECT_EQ(missing->GetType(), 1);
    EXPECT_EQ(Registry().GetByIdentifier("NULL"), &Registry());
    EXPECT_EQ(Lines(),
              "(WARNING): Errorcode not found. value: 4711\n"
              "(ERROR): Return value: (Error code not found)\n");
}

TEST_F(ErrorCodes, DeclareRegistersOnceAndKeepsTheFirstMessage) {
    const std::int32_t first = *Registry().Declare("A", "first", ErrorCode::kWarning);
    EXPECT_EQ(Lines(),
              "(NOTICE): \tRegister Code\n"
              "(NOTICE): \tnew_value: 1024\n"
              "(NOTICE): \tnew_identifier: A\n"
              "(NOTICE): \tnew_message: first\n"
              "(NOTICE): \tnew_type: 2\n"
              "(WARNING): Return value: first\n");
    ErrorCode* const again = Registry().Declare("A", "second", ErrorCode::kCritical);
    EXPECT_EQ(first, 1024);
    EXPECT_TRUE(*again == first);
    EXPECT_EQ(again->GetMessage(), "first");
    EXPECT_EQ(again->GetType(), ErrorCode::kWarning);
    EXPECT_EQ(TVL::Report({"B", "other", ErrorCode::kError}), 1025);
    EXPECT_TRUE(Registry().HasIdentifier("B"));
    EXPECT_TRUE(Registry().HasValue(1025));
    EXPECT_FALSE(Registry().HasValue(1026));
}

TEST_F(ErrorCodes, TheLevelOfAReturnValueFollowsTheSeverity) {
    for (std::int32_t type = 0; type <= 4; ++type) {
        TVL::Report({std::to_string(type).c_str(), "text", type});
        const bool isMild = type == ErrorCode::kWarning || type == ErrorCode::kNotice;
        EXPECT_TRUE(Lines().ends_with(isMild ? "(WARNING): Return value: text\n"
                                             : "(ERROR): Return value: text\n"))
            << type;
    }
}

TEST_F(ErrorCodes, RegisterTakesACopyAndGivesBackTheCallersCode) {
    ErrorCode code("MINE", "mine", ErrorCode::kNotice);
    EXPECT_EQ(Registry().Register(&code), &code);
    EXPECT_NE(Registry().GetByIdentifier("MINE"), &code);
    EXPECT_TRUE(*Registry().GetByIdentifier("MINE") == code);
}

TEST_F(ErrorCodes, RegisterRefusesWhatIsTaken) {
    ErrorCode first("A", "a", ErrorCode::kError);
    ErrorCode sameIdentifier("A", "another", ErrorCode::kError);
    ErrorCode sameValue(first);
    Registry().Register(&first);

    ErrorCode* const existing = Registry().Register(&sameIdentifier);
    EXPECT_EQ(existing->GetMessage(), "a");
    EXPECT_TRUE(Lines().ends_with(
        "(ERROR): \tError: Trying to register error code with a non-unique identifier: A\n"
        "(ERROR): \tReturn value: a\n"));
    EXPECT_EQ(Registry().Register(&sameValue)->GetIdentifier(), "ERRORCODE_NONUNIQUEVALUE");
    EXPECT_EQ(Registry().Register(nullptr), &Registry());
    EXPECT_FALSE(Registry().HasValue(sameIdentifier));
}

TEST_F(ErrorCodes, APlainCodeTakesNoCodesIn) {
    ErrorCode plain("A", "a", ErrorCode::kError);
    ErrorCode other("B", "b", ErrorCode::kError);
    EXPECT_EQ(plain.Register(&other)->GetIdentifier(), "ERRORCODE_NONCONTAINER");
    EXPECT_FALSE(plain.HasIdentifier("B"));
    EXPECT_TRUE(Registry().HasIdentifier("ERRORCODE_NONCONTAINER"));
    EXPECT_EQ(plain.Declare("C", "c", ErrorCode::kError), &Registry());
}

TEST_F(ErrorCodes, AssignmentCopiesTheCodeAndNotTheRegistry) {
    ErrorCode registry;
    ErrorCode code("A", "a", ErrorCode::kNotice);
    registry = code;
    EXPECT_TRUE(registry == code);
    EXPECT_TRUE(registry.HasIdentifier("SUCCESS"));
    const ErrorCode copy(Registry());
    EXPECT_TRUE(copy == Registry());
    EXPECT_FALSE(copy.HasIdentifier("SUCCESS"));
}

TEST_F(ErrorCodes, APlacedRegistryTakesOverTheSequence) {
    ErrorCode outside;
    EXPECT_EQ(TVL::Report({"A", "a", ErrorCode::kError}), 1024);
    Place(outside);
    EXPECT_EQ(TVL::Report({"B", "b", ErrorCode::kError}), 1024);
    EXPECT_TRUE(outside.HasIdentifier("B"));
    EXPECT_FALSE(outside.HasIdentifier("A"));
}

}  // namespace
