#include <VextilToolkit/VextilError.h>

#include <gtest/gtest.h>

namespace {

TEST(ToolkitError, EveryCodeHasItsDomainAndBothTexts)
{
    for (int code : {420, 421, 422, 423, 424, 1500}) {
        SCOPED_TRACE(code);
        const VextilError error = VextilError::createVextilSDKErrorWithCode(code);
        EXPECT_EQ(error.domain, "com.VextilToolkit");
        EXPECT_EQ(error.code, code);
        EXPECT_GT(error.description.size(), 10);
        EXPECT_GT(error.recoverySuggestion.size(), 10);
        EXPECT_NE(error.description, error.recoverySuggestion);
    }
    EXPECT_EQ(VextilError::createVextilSDKErrorWithCode(421).description, "The selfie was not taken.");
    EXPECT_NE(VextilError::createVextilSDKErrorWithCode(422), VextilError::createVextilSDKErrorWithCode(423));
}

TEST(ToolkitErrorDeathTest, ACodeMissingFromTheTableIsFatal)
{
    EXPECT_DEATH(VextilError::createVextilSDKErrorWithCode(999), "no entry \"999-description\"");
}

}  // namespace
