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
    for (const ErrorCode* missing : {Registry().GetByValue(4711), Registry().GetByIdentifier("X"),
                                     Registry().Register(nullptr)})
        EXPECT_EQ(missing, &Registry());
    EXPECT_EQ(Told(Registry()), "-1 NOTFOUND, (Error code not found), 1");
    EXPECT_EQ(Lines(),
              "(WARNING): Errorcode not found. value: 4711\n"
              "(ERROR): Return value: (Error code not found)\n");
    // What is registered stays behind when a code is assigned.
    ErrorCode registry;
    registry = ErrorCode("A", "a", ErrorCode::kNotice);
    EXPECT_EQ(Told(registry), "1024 A, a, 3");
    EXPECT_TRUE(registry.HasIdentifier("SUCCESS"));
}

TEST_F(ErrorCodes, DeclareRegistersOnceKeepsTheFirstTextsAndLogsByTheirSeverity) {
    Registry().Declare("A", "first", ErrorCode::kWarning);
    EXPECT_EQ(Lines(),
              "(NOTICE): \tRegister Code\n(NOTICE): \tnew_value: 1024\n"
              "(NOTICE): \tnew_identifier: A\n(NOTICE): \tnew_message: first\n"
              "(NOTICE): \tnew_type: 2\n(WARNING): Return value: first\n");
    EXPECT_EQ(Told(*Registry().Declare("A", "second", ErrorCode::kCritical)), "1024 A, first, 2");
    for (std::int32_t type = 0; type <= 4; ++type) {
        EXPECT_EQ(TVL::Report({std::to_string(type).c_str(), "text", type}), 1025 + type);
        const bool isMild = type == ErrorCode::kWarning || type == ErrorCode::kNotice;
        EXPECT_TRUE(Lines().ends_with(isMild ? "(WARNING): Return value: text\n"
                                             : "(ERROR): Return value: text\n"));
    }
}

TEST_F(ErrorCodes, RegisterTakesACopyOfWhatIsNew) {
    ErrorCode first("A", "a", ErrorCode::kError);
    ErrorCode sameIdentifier("A", "another", ErrorCode::kError);
    ErrorCode sameValue(first);
    EXPECT_EQ(Registry().Register(&first), &first);
    EXPECT_NE(Registry().GetByIdentifier("A"), &first);
    EXPECT_EQ(Registry().Register(&sameIdentifier)->GetMessage(), "a");
    EXPECT_EQ(Registry().Register(&sameValue)->GetIdentifier(), "ERRORCODE_NONUNIQUEVALUE");
    EXPECT_FALSE(Registry().HasValue(sameIdentifier));
    EXPECT_EQ(first.Register(&sameIdentifier)->GetIdentifier(), "ERRORCODE_NONCONTAINER");
    EXPECT_EQ(first.Declare("B", "b", ErrorCode::kError), &Registry());
    EXPECT_FALSE(first.HasIdentifier("A") || first.HasIdentifier("B"));
    const std::string start = "\tError: Trying to register error code ";
    for (const char* refusal : {"with a non-unique identifier: A\n",
                                "with a non-unique value: 1024\n", "to a non-container: another\n"})
        EXPECT_EQ(TimesTraced(start + refusal), 1U) << refusal;
}

}  // namespace
