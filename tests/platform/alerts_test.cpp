#include "platform/alerts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tl::platform {
namespace {

const Alert kPermanentDelete{"Permanently delete?",
                             "Items cannot be moved to the trash, so they will be permanently "
                             "deleted.\nYou cannot undo this action.",
                             {"Delete", "Cancel"}};

TEST(HeadlessAlerts, AnswerFromTheScriptThenTheDefault)
{
    const struct
    {
        std::vector<int> script;
        std::vector<int> answers;
    } cases[] = {
        {{}, {0, 0}},
        {{1}, {1, 0}},
        {{1, 0, 2}, {1, 0, 2, 0}},
    };
    for (const auto &c : cases) {
        HeadlessAlertPresenter presenter;
        for (int answer : c.script)
            presenter.pushAnswer(answer);
        std::vector<int> answers;
        for (size_t i = 0; i < c.answers.size(); ++i)
            answers.push_back(presenter.run(kPermanentDelete));
        EXPECT_EQ(answers, c.answers);
        EXPECT_EQ(presenter.shownAlerts().size(), qsizetype(c.answers.size()));
    }
}

TEST(HeadlessAlerts, RecordsWhatWasShown)
{
    HeadlessAlertPresenter presenter;
    presenter.run(kPermanentDelete);
    presenter.run({"Delete \"Report.md\"?",
                   "The selected items will be moved to the Finder's trash.",
                   {"Delete", "Cancel"}});
    const QList<Alert> shown = presenter.shownAlerts();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0].informativeText, kPermanentDelete.informativeText);
    EXPECT_EQ(shown[0].buttons, kPermanentDelete.buttons);
    EXPECT_EQ(shown[1].message, "Delete \"Report.md\"?");
}

TEST(HeadlessAlerts, ChooseFolderFromTheScriptThenCancel)
{
    HeadlessAlertPresenter presenter;
    presenter.pushFolder(QString("/home/reader/Library"));
    presenter.pushFolder(std::nullopt);
    presenter.pushFolder(QString("/srv/Other"));
    EXPECT_EQ(presenter.chooseFolder("Choose a library", "Choose"), "/home/reader/Library");
    EXPECT_EQ(presenter.chooseFolder("Choose a library", "Choose"), std::nullopt);
    EXPECT_EQ(presenter.chooseFolder("Choose a library", "Choose"), "/srv/Other");
    EXPECT_EQ(presenter.chooseFolder("Choose a library", "Choose"), std::nullopt);
}

class MockPresenter : public AlertPresenter
{
public:
    MOCK_METHOD(int, run, (const Alert &), (override));
    MOCK_METHOD(std::optional<QString>, chooseFolder, (const QString &, const QString &),
                (override));
};

TEST(ProcessAlerts, HeadlessUntilAPresenterIsSet)
{
    EXPECT_NE(dynamic_cast<HeadlessAlertPresenter *>(&alerts()), nullptr);

    auto mock = std::make_shared<MockPresenter>();
    EXPECT_CALL(*mock, run(::testing::Field(&Alert::message, QString("Permanently delete?"))))
        .WillOnce(::testing::Return(1));
    setAlertPresenter(mock);
    EXPECT_EQ(alerts().run(kPermanentDelete), 1);

    setAlertPresenter(nullptr);
    auto *headless = dynamic_cast<HeadlessAlertPresenter *>(&alerts());
    ASSERT_NE(headless, nullptr);
    EXPECT_TRUE(headless->shownAlerts().isEmpty()) << "a fresh presenter";
}

} // namespace
} // namespace tl::platform
