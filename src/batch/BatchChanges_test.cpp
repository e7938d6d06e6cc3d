// SPDX-License-Identifier: Apache-2.0
// Who listens to a document hears of what the batch program and its scripts do as of what a user does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "batch/BatchWork.h"
#include "support/SmallApp.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::ElementsAre;

class BatchChanges : public test::SmallAppTest {
  protected:
    BatchChanges() {
        directory.Write("site/small/tavrn.def", "roe {\nxfield {\nenvname SIZE\nvalue 4\n}\n}\n");
        MakeApp();
        app->LoadSiteDefaults();
        work = std::make_unique<BatchWork>(
            *app, queue, [] { return false; }, BatchRules{});
        listener = work->Document().edits.Observe(
            [this](const Change& change) { heard.push_back(test::TextOf(change)); });
    }
    ~BatchChanges() override {
        EXPECT_EQ(work->Document().edits.StrayEdits(), 0) << "an edit outside a scope";
    }

    std::unique_ptr<BatchWork> work;
    std::vector<std::string> heard;
    Edits::Subscription listener;
};

TEST_F(BatchChanges, AnOptionIsToldIfItIsAnotherOne) {
    work->Set("SIZE", "9");
    work->Set("SIZE", "9");
    EXPECT_THAT(heard, ElementsAre("Render Option: options"));
}

TEST_F(BatchChanges, AScriptsEditIsToldLikeAnyOther) {
    work->Set("SIZE", "9");
    heard.clear();
    ASSERT_TRUE(work->RunScript(directory.Write("defaults.tvx", "roe use-defaults x\n"))) << sink.log;
    EXPECT_THAT(heard, ElementsAre("Default Options: options"));
}

TEST_F(BatchChanges, AnOperatorComesAndIsDropped) {
    ASSERT_TRUE(work->Add("Grain")) << sink.LastAlert();
    EXPECT_THAT(heard, ElementsAre("Add Operator: came Grain_1", "Add Grain: dropped Grain_1"));
}

TEST_F(BatchChanges, AnotherDocumentTakesItsPlace) {
    ASSERT_TRUE(work->Open(directory.Write("other.tvn", "opdesk { opbox { filename Grain wid 7 } }\n")));
    EXPECT_THAT(heard, ElementsAre("replaced"));
}

}  // namespace
}  // namespace tavrin
