#include "WorkspaceTestSupport.h"
#include "schema/SchemaTrees.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/SectionArrayController.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

std::shared_ptr<const PFMDomain> domain(const QString& domainString, const QString& title,
                                        const QString& category, plist::Dictionary extra = {},
                                        plist::Array keys = {}) {
    extra.insert(QStringLiteral("pfm_title"), title);
    extra.insert(QStringLiteral("pfm_quorlin_category"), category);
    keys.append(keyTree(QStringLiteral("PayloadDisplayName"), QStringLiteral("string"),
                        {{QStringLiteral("pfm_default"), title}}));
    return PFMDomain::make(manifestTree(domainString, keys, extra));
}

QStringList titles(const QList<PFMSection*>& sections) {
    QStringList list;
    for (const PFMSection* section : sections)
        list.append(section->sectionProperties().title);
    return list;
}

TEST(SectionCollection, JoinsDomainsOfOneTitleAndCategoryOnly) {
    const PFMSectionCollection collection(
        {domain(QStringLiteral("com.example.a"), QStringLiteral("Mail"), QStringLiteral("system")),
         domain(QStringLiteral("com.example.b"), QStringLiteral("Mail"), QStringLiteral("system")),
         domain(QStringLiteral("com.example.c"), QStringLiteral("Mail"), QStringLiteral("application"))});
    const auto pointers = collection.sectionPointers();
    // Two rows of domains and three group titles: no user domain, no user group.
    ASSERT_EQ(pointers.size(), 5);
    EXPECT_EQ(pointers[0]->domainsString(), QStringLiteral("com.example.a and com.example.b"));
    EXPECT_EQ(pointers[1]->domainsString(), QStringLiteral("com.example.c"));
    EXPECT_EQ(titles(pointers.mid(2)),
              (QStringList{QStringLiteral("Configured Domains"), QStringLiteral("Available System Domains"),
                           QStringLiteral("Available Application Domains")}));
}

TEST(SectionCollection, AddsTheUserGroupOnlyForUserDomains) {
    const PFMSectionCollection collection(
        {domain(QStringLiteral("com.example.u"), QStringLiteral("Mine"), QStringLiteral("user"))});
    EXPECT_EQ(titles(collection.sectionPointers()).last(), QStringLiteral("Available User Domains"));
}

TEST(SectionSorting, ListsConfiguredFirstThenEachGroupByPriorityAndTitle) {
    const auto general = fixtureDomain(QStringLiteral("root"));
    const Profile::DomainList domains{
        general, domain(QStringLiteral("com.example.z"), QStringLiteral("Zebra"), QStringLiteral("system")),
        domain(QStringLiteral("com.example.y"), QStringLiteral("Yak"), QStringLiteral("system"),
               {{QStringLiteral("pfm_quorlin_sort_priority"), 5000}}),
        domain(QStringLiteral("com.example.a"), QStringLiteral("Antelope"), QStringLiteral("system"),
               {{QStringLiteral("pfm_quorlin_sort_priority"), 10}}),
        domain(QStringLiteral("com.example.app"), QStringLiteral("App"), QStringLiteral("application"))};
    const auto profile = Profile::makeNewProfile(domains, makeTestEnvironment());
    PFMSectionCollection collection(domains);
    SectionArrayController list;
    list.setContent(collection.sectionPointers());
    for (PFMSection* section : collection.sectionPointers())
        section->bind(profile);

    // Above 999 counts as 999, so "Yak" sorts with "Zebra" by title.
    EXPECT_EQ(sectionTitled(collection, QStringLiteral("Yak"))->sortingString(), QStringLiteral("111999Yak"));
    EXPECT_EQ(titles(list.arrangedObjects()),
              (QStringList{QStringLiteral("Configured Domains"), general->title(),
                           QStringLiteral("Available System Domains"), QStringLiteral("Antelope"),
                           QStringLiteral("Yak"), QStringLiteral("Zebra"),
                           QStringLiteral("Available Application Domains"), QStringLiteral("App")}));

    // The first payload moves a section up into the configured block, the last one back.
    EditHistory history;
    PFMSection& zebra = *sectionTitled(collection, QStringLiteral("Zebra"));
    list.setSelectionIndexes({int(list.arrangedObjects().indexOf(&zebra))});
    ASSERT_EQ(history.addPayload(zebra, profile), PFMSection::AddPayloadResult::added);
    EXPECT_EQ(list.arrangedObjects().indexOf(&zebra), 2);
    EXPECT_EQ(list.selectedObject(), &zebra);
    history.undoStack().undo();
    EXPECT_EQ(list.arrangedObjects().indexOf(&zebra), 5);
    EXPECT_EQ(list.selectedObject(), &zebra);
}

TEST(SectionStrings, CountPayloadsAndShowMandatory) {
    PFMSection section(
        domain(QStringLiteral("com.example.a"), QStringLiteral("A"), QStringLiteral("system")));
    EXPECT_EQ(section.payloadsConfiguredString(), QStringLiteral("Not Configured"));
    section.setPayloadsConfigured(1);
    EXPECT_EQ(section.payloadsConfiguredString(), QStringLiteral("1 Payload Configured"));
    section.setPayloadsConfigured(3);
    EXPECT_EQ(section.payloadsConfiguredString(), QStringLiteral("3 Payloads Configured"));

    PFMSection mandatory(domain(QStringLiteral("com.example.m"), QStringLiteral("M"),
                                QStringLiteral("system"),
                                {{QStringLiteral("pfm_require"), QStringLiteral("always")},
                                 {QStringLiteral("pfm_quorlin_single_payload"), true}}));
    EXPECT_EQ(mandatory.payloadsConfiguredString(), QStringLiteral("Mandatory"));
}

TEST(SectionStrings, NamePlatformsAndSupervision) {
    PFMSection section(domain(QStringLiteral("com.example.a"), QStringLiteral("A"), QStringLiteral("system"),
                              {{QStringLiteral("pfm_quorlin_platforms"), plist::Array{"ios", "tvos"}}}));
    EXPECT_EQ(section.supportedPlatformStrings(),
              (QStringList{QStringLiteral("ios"), QStringLiteral("tvos")}));
    EXPECT_EQ(section.supportedPlatformsString(), QStringLiteral("iOS and tvOS"));
    EXPECT_TRUE(section.supportsIOS());
    EXPECT_FALSE(section.supportsMacOS());
    EXPECT_TRUE(section.searchKeywords().isEmpty());
    EXPECT_FALSE(section.supervisionRequiredString());

    const auto supervised =
        domain(QStringLiteral("com.example.b"), QStringLiteral("A"), QStringLiteral("system"),
               {{QStringLiteral("pfm_quorlin_platforms"), plist::Array{"macos"}},
                {QStringLiteral("pfm_quorlin_supervision_required"), true}});
    section.addDomain(supervised);
    EXPECT_EQ(section.supportedPlatformsString(), QStringLiteral("iOS, macOS, and tvOS"));
    EXPECT_TRUE(section.supportsMacOS());
    // Searching for the word finds sections with supervised content.
    EXPECT_TRUE(PFMSection(supervised).searchKeywords().contains(QStringLiteral("Supervised")));
    EXPECT_EQ(section.supervisionRequiredString(), QStringLiteral("Supervision required on macOS"));
    section.addDomain(domain(
        QStringLiteral("com.example.c"), QStringLiteral("A"), QStringLiteral("system"),
        {{QStringLiteral("pfmx_supported_oses"),
          plist::Dictionary{
              {QStringLiteral("iOS"), plist::Dictionary{{QStringLiteral("pfmx_introduced"), "5.0"},
                                                        {QStringLiteral("pfmx_supervised"), true}}},
              {QStringLiteral("tvOS"), plist::Dictionary{{QStringLiteral("pfmx_introduced"), "9.0"}}}}}}));
    EXPECT_EQ(section.supervisionRequiredString(), QStringLiteral("Supervision required on iOS and macOS"));
}

TEST(UnfamiliarSections, OneRowPerUnknownTypeCountingItsPayloads) {
    const auto domains = fixtureDomains();
    const auto profile =
        Profile::parseProfile(readFile(testDataPath(QStringLiteral("workspace/unfamiliar.mobileconfig"))),
                              domains, makeTestEnvironment());
    ASSERT_TRUE(profile);
    PFMSectionCollection collection(domains);
    SectionArrayController list;
    list.setContent(collection.sectionPointers());
    list.addUnfamiliarSections(**profile);

    QList<PFMSection*> unfamiliar;
    for (PFMSection* section : list.content()) {
        if (section->sectionKind() == PFMSection::Kinds::unfamiliar)
            unfamiliar.append(section);
    }
    ASSERT_EQ(unfamiliar.size(), 2);
    EXPECT_EQ(unfamiliar[0]->payloadsConfiguredString(), QStringLiteral("2 Payloads Configured"));
    EXPECT_EQ(unfamiliar[1]->payloadsConfiguredString(), QStringLiteral("1 Payload Configured"));
    EXPECT_EQ(unfamiliar[0]->supportedPlatformsString(), QStringLiteral("Unfamiliar Domain"));
    // They stand in the configured block, right below its title.
    EXPECT_EQ(list.arrangedObjects()[0]->sectionProperties().title, QStringLiteral("Configured Domains"));
    EXPECT_TRUE(list.arrangedObjects().indexOf(unfamiliar[0]) <
                list.arrangedObjects().indexOf(sectionTitled(collection, QStringLiteral("Everything"))));

    list.removeObject(unfamiliar[1]);
    EXPECT_EQ(list.content().size(), collection.sections().size() + 1);
}

TEST(SectionSelection, ClickedRowWinsAndGroupTitlesBlockMoving) {
    const PFMSectionCollection collection(
        {domain(QStringLiteral("com.example.a"), QStringLiteral("A"), QStringLiteral("system")),
         domain(QStringLiteral("com.example.b"), QStringLiteral("B"), QStringLiteral("system"))});
    SectionArrayController list;
    list.setContent(collection.sectionPointers());
    // Configured, System, A, B, Application.
    ASSERT_EQ(titles(list.arrangedObjects()),
              (QStringList{QStringLiteral("Configured Domains"), QStringLiteral("Available System Domains"),
                           QStringLiteral("A"), QStringLiteral("B"),
                           QStringLiteral("Available Application Domains")}));
    list.setSelectionIndexes({2});
    EXPECT_TRUE(list.isSelectionAdjacentToGroupTitle());
    list.setClickedRow(3);
    EXPECT_EQ(list.selectedOrClickedObject()->sectionProperties().title, QStringLiteral("B"));
    list.setClickedRow(99);
    EXPECT_EQ(list.selectedOrClickedObject()->sectionProperties().title, QStringLiteral("A"));
    list.setSelectionIndexes({});
    EXPECT_EQ(list.selectedOrClickedObject(), nullptr);
    EXPECT_FALSE(list.isSelectionAdjacentToGroupTitle());
}

TEST(SectionBadge, FollowsTheValidationOfItsFields) {
    const auto relay = workspaceDomain(QStringLiteral("relay"));
    const Profile::DomainList domains{fixtureDomain(QStringLiteral("root")), relay};
    const auto profile = Profile::makeNewProfile(domains, makeTestEnvironment());
    PFMSectionCollection collection(domains);
    PFMSection& section = *sectionTitled(collection, relay->title());
    SectionArrayController list;
    list.setContent(collection.sectionPointers());
    int badges = 0;
    QObject::connect(&list, &SectionArrayController::badgeChanged, [&badges] { ++badges; });
    EditHistory history;

    EXPECT_FALSE(SectionArrayController::errorBadge(section));
    history.addPayload(section, profile);
    // A required value that is missing is the one fault.
    EXPECT_EQ(SectionArrayController::errorBadge(section), 1);
    const auto& form = *section.sectionViewController()->payloadControllers().front();
    history.setValue(form.payload()->keyAtPath(QStringLiteral("Port")), plist::Value(500));
    EXPECT_EQ(SectionArrayController::errorBadge(section), 2);
    history.setValue(form.payload()->keyAtPath(QStringLiteral("ServerName")),
                     plist::Value(QStringLiteral("x")));
    history.setValue(form.payload()->keyAtPath(QStringLiteral("Port")), plist::Value(50));
    EXPECT_FALSE(SectionArrayController::errorBadge(section));
    EXPECT_GE(badges, 3);
    history.undoStack().undo();
    EXPECT_EQ(SectionArrayController::errorBadge(section), 1);
}

TEST(FileSections, RefuseAnEmptyFileWhateverItsExtension) {
    const auto fileDomain = workspaceDomain(QStringLiteral("certificate"));
    ASSERT_TRUE(fileDomain);
    const Profile::DomainList domains{fixtureDomain(QStringLiteral("root")), fileDomain};
    const auto profile = Profile::makeNewProfile(domains, makeTestEnvironment());
    PFMSection section(fileDomain);
    QTemporaryDir folder;
    const QString empty = folder.filePath(QStringLiteral("empty.cer"));
    QFile(empty).open(QIODevice::WriteOnly);
    const QString wrong = folder.filePath(QStringLiteral("full.txt"));
    {
        QFile file(wrong);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("certificate");
    }
    EXPECT_EQ(section.addPayload(profile, std::nullopt), PFMSection::AddPayloadResult::fileNeeded);
    EXPECT_EQ(section.addPayload(profile, empty), PFMSection::AddPayloadResult::fileIncompatible);
    EXPECT_EQ(section.addPayload(profile, wrong), PFMSection::AddPayloadResult::fileIncompatible);
    EXPECT_EQ(section.payloadsConfigured(), 0);
}

} // namespace
} // namespace quorlin
