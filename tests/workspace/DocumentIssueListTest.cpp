#include "workspace/DocumentIssueList.h"
#include "WorkspaceTestSupport.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSectionViewController.h"

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;
using Direction = DocumentIssueList::Direction;

// Beta, then Alpha with two payloads: each payload lacks its required server.
class DocumentIssues : public ::testing::Test {
protected:
    DocumentIssues()
        : domains{fixtureDomain(QStringLiteral("root")), workspaceDomain(QStringLiteral("beta")),
                  workspaceDomain(QStringLiteral("alpha"))}
        , profile(Profile::makeNewProfile(domains, makeTestEnvironment()))
        , collection(domains) {
        for (PFMSection* section : collection.sectionPointers()) {
            section->setKeyValueWriter(history.keyValueWriter());
            section->bind(profile);
        }
        history.addPayload(beta(), profile);
        history.addPayload(alpha(), profile);
        history.addPayload(alpha(), profile);
    }

    PFMSection& alpha() const { return *sectionTitled(collection, QStringLiteral("Alpha")); }
    PFMSection& beta() const { return *sectionTitled(collection, QStringLiteral("Beta")); }
    PayloadViewController& form(PFMSection& section, int index) const {
        return *section.sectionViewController()->payloadControllers()[size_t(index)];
    }
    QList<DocumentIssueList::Issue> issues() const {
        return DocumentIssueList::collect(collection.sectionPointers());
    }
    int badgeSum() const {
        int sum = 0;
        for (PFMSection* section : collection.sectionPointers())
            sum += section->errorCount();
        return sum;
    }

    Profile::DomainList domains;
    Profile::Pointer profile;
    EditHistory history;
    PFMSectionCollection collection;
};

TEST_F(DocumentIssues, ListInSideBarOrderAndAgreeWithTheBadgesThroughEditsAndUndo) {
    auto listed = issues();
    ASSERT_EQ(listed.size(), 3);
    EXPECT_EQ(listed.size(), badgeSum());
    EXPECT_EQ(listed[0].sectionTitle, QStringLiteral("Alpha"));
    EXPECT_EQ(listed[1].location.payloadIndex, 1);
    EXPECT_EQ(listed[2].sectionTitle, QStringLiteral("Beta"));
    EXPECT_EQ(listed[0].keyTitle, QStringLiteral("Server Name"));
    EXPECT_FALSE(listed[0].message.isEmpty());
    // Only a section of several payloads names the payload.
    EXPECT_EQ(listed[1].payloadTitle, form(alpha(), 1).title());
    EXPECT_TRUE(listed[2].payloadTitle.isEmpty());

    history.setValue(form(beta(), 0).payload()->keyAtPath(QStringLiteral("Port")), plist::Value(500));
    listed = issues();
    ASSERT_EQ(listed.size(), 4);
    EXPECT_EQ(listed.size(), badgeSum());
    EXPECT_EQ(listed[3].keyTitle, QStringLiteral("Port"));
    history.undoStack().undo();
    EXPECT_EQ(issues().size(), 3);
    EXPECT_EQ(badgeSum(), 3);
}

TEST_F(DocumentIssues, StepForwardAndBackWrappingRoundFromIssuesFieldsAndNowhere) {
    history.setValue(form(beta(), 0).payload()->keyAtPath(QStringLiteral("Port")), plist::Value(500));
    const auto listed = issues();
    ASSERT_EQ(listed.size(), 4);
    const auto server = listed[2].location;
    const auto port = listed[3].location;
    // Beta's payload itself, not one of its rows, as when the form has no focus.
    const auto betaPayload = DocumentIssueList::Location{&beta(), 0, -1};
    struct Case {
        std::optional<DocumentIssueList::Location> from;
        Direction direction;
        DocumentIssueList::Location expected;
    };
    const Case cases[] = {
        {std::nullopt, Direction::next, listed[0].location},
        {std::nullopt, Direction::previous, port},
        {listed[0].location, Direction::next, listed[1].location},
        {port, Direction::next, listed[0].location},
        {listed[0].location, Direction::previous, port},
        {server, Direction::previous, listed[1].location},
        // A place without an error steps to its neighbours by position.
        {betaPayload, Direction::next, server},
        {betaPayload, Direction::previous, listed[1].location},
    };
    for (const Case& test : cases) {
        const auto found = DocumentIssueList::step(listed, test.from, test.direction);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->location, test.expected);
    }
    EXPECT_FALSE(DocumentIssueList::step({}, server, Direction::next));

    // The row of an issue is found again from its field.
    const FieldViewController* controller =
        form(beta(), 0).fieldViewControllers()[size_t(port.fieldIndex)].controller.get();
    EXPECT_EQ(DocumentIssueList::locate(collection.sectionPointers(), controller), port);
    EXPECT_FALSE(DocumentIssueList::locate(collection.sectionPointers(), nullptr));
}

TEST_F(DocumentIssues, RevealOpensACollapsedPayload) {
    const auto first = issues().first().location;
    // The second payload added collapsed the first.
    ASSERT_TRUE(form(alpha(), 0).isCollapsed());
    EXPECT_TRUE(DocumentIssueList::reveal(first));
    EXPECT_FALSE(form(alpha(), 0).isCollapsed());
    EXPECT_FALSE(DocumentIssueList::reveal({&alpha(), 5, 0}));
}

} // namespace
} // namespace quorlin
