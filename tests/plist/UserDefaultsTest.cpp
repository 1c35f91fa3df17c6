#include "plist/UserDefaults.h"
#include "plist/PlistReader.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using quorlin::UserDefaults;
namespace plist = quorlin::plist;

namespace {

class UserDefaultsTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }
    QString path() const { return m_folder.filePath(QStringLiteral("prefs/com.example.test.plist")); }

    QTemporaryDir m_folder;
};

// Records every key announced as changed while it lives.
class ChangeRecorder {
public:
    explicit ChangeRecorder(UserDefaults& defaults)
        : m_connection(QObject::connect(&defaults, &UserDefaults::valueChanged,
                                        [this](const QString& key) { keys << key; })) {}
    ~ChangeRecorder() { QObject::disconnect(m_connection); }

    QStringList keys;

private:
    QMetaObject::Connection m_connection;
};

} // namespace

TEST_F(UserDefaultsTest, PersistentValuesHideRegisteredOnesUntilRemoved) {
    UserDefaults defaults(path());
    defaults.registerDefaults({{"branch", "master"}, {"tags", true}});
    EXPECT_EQ(defaults.string("branch"), QStringLiteral("master"));
    EXPECT_FALSE(defaults.hasPersistentValue("branch"));

    defaults.set("branch", "develop");
    EXPECT_EQ(defaults.string("branch"), QStringLiteral("develop"));
    EXPECT_EQ(defaults.registeredValue("branch"), plist::Value("master"));
    EXPECT_TRUE(defaults.hasPersistentValue("branch"));

    // Registering again replaces the registered value only.
    defaults.registerDefaults({{"branch", "main"}});
    EXPECT_EQ(defaults.string("branch"), QStringLiteral("develop"));
    EXPECT_EQ(defaults.boolean("tags"), true);

    defaults.remove("branch");
    EXPECT_EQ(defaults.string("branch"), QStringLiteral("main"));
    EXPECT_FALSE(defaults.hasPersistentValue("branch"));

    // A null value is a removal, not a stored null.
    defaults.set("tags", false);
    defaults.set("tags", plist::Value());
    EXPECT_FALSE(defaults.hasPersistentValue("tags"));
    EXPECT_EQ(defaults.boolean("tags"), true);
}

TEST_F(UserDefaultsTest, TypedReadsTreatAValueOfTheWrongClassAsAbsent) {
    UserDefaults defaults(path());
    const plist::Date date{1000.5};
    defaults.registerDefaults({{"flag", "true"},
                               {"count", 3.0},
                               {"ratio", qint64(2)},
                               {"when", date},
                               {"bytes", QByteArray("\x01\x02")},
                               {"list", plist::Array{"a"}},
                               {"map", plist::Dictionary{{"k", 1}}}});

    EXPECT_FALSE(defaults.boolean("flag")); // a string "true" is no boolean
    EXPECT_EQ(defaults.string("flag"), QStringLiteral("true"));
    EXPECT_FALSE(defaults.integer("count")); // a real is no integer
    EXPECT_EQ(defaults.real("count"), 3.0);
    EXPECT_FALSE(defaults.real("ratio"));
    EXPECT_EQ(defaults.number("ratio"), 2.0); // but numbers read across classes
    EXPECT_EQ(defaults.integer("ratio"), 2);
    EXPECT_EQ(defaults.date("when"), date);
    EXPECT_FALSE(defaults.string("when"));
    EXPECT_EQ(defaults.data("bytes"), QByteArray("\x01\x02"));
    EXPECT_FALSE(defaults.array("bytes"));
    EXPECT_EQ(defaults.array("list"), plist::Array{"a"});
    EXPECT_FALSE(defaults.dictionary("list"));
    EXPECT_EQ(defaults.dictionary("map"), (plist::Dictionary{{"k", 1}}));
    EXPECT_FALSE(defaults.string("absent"));
    EXPECT_TRUE(defaults.value("absent").isNull());

    // A persistent value of the wrong class hides a registered one of the right class.
    defaults.set("list", 7);
    EXPECT_FALSE(defaults.array("list"));
}

TEST_F(UserDefaultsTest, ASecondInstanceOnTheSameFileSeesTheSavedValues) {
    const plist::Dictionary saved{{"name", "Quorlin"},
                                  {"count", 42},
                                  {"ratio", 0.25},
                                  {"enabled", false},
                                  {"when", plist::Date{700000000}}, // XML keeps whole seconds
                                  {"bytes", QByteArray("\x00\xff", 2)},
                                  {"nested", plist::Dictionary{{"list", plist::Array{1, "two"}}}}};
    {
        UserDefaults first(path());
        first.registerDefaults({{"registeredOnly", true}});
        for (auto it = saved.begin(); it != saved.end(); ++it)
            EXPECT_TRUE(first.set(it.key(), it.value())) << it.key().toStdString();
        EXPECT_TRUE(first.set("removedLater", 1));
        EXPECT_TRUE(first.remove("removedLater"));
    }
    UserDefaults second(path());
    EXPECT_EQ(second.persistentDomain(), saved);
    // The registered domain is never written.
    EXPECT_TRUE(second.value("registeredOnly").isNull());
}

TEST_F(UserDefaultsTest, EachChangeLeavesACompleteXmlPropertyListAndNoTemporaryFile) {
    UserDefaults defaults(path());
    ASSERT_TRUE(defaults.set("a", "first"));
    ASSERT_TRUE(defaults.set("b", 2));

    const auto read = plist::PlistReader::read(quorlin::test::readFile(path()));
    ASSERT_TRUE(read) << read.error().toString().toStdString();
    EXPECT_EQ(read->format, plist::Format::Xml);
    EXPECT_EQ(read->root, plist::Value(defaults.persistentDomain()));
    EXPECT_EQ(QDir(QFileInfo(path()).absolutePath()).entryList(QDir::Files | QDir::Hidden),
              QStringList{QFileInfo(path()).fileName()});
}

TEST_F(UserDefaultsTest, AMissingOrDamagedFileStartsEmpty) {
    EXPECT_TRUE(UserDefaults(path()).persistentDomain().isEmpty());

    QDir().mkpath(QFileInfo(path()).absolutePath());
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\"?><plist><dict><key>a</key>");
    file.close();
    UserDefaults defaults(path());
    EXPECT_TRUE(defaults.persistentDomain().isEmpty());
    EXPECT_TRUE(defaults.value("a").isNull());
}

TEST_F(UserDefaultsTest, AFailedWriteIsReportedAndTheValueStillHolds) {
    // A regular file where the folder should be: nothing can be written below it.
    const QString blocker = m_folder.filePath(QStringLiteral("blocker"));
    QFile file(blocker);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();

    UserDefaults defaults(blocker + QStringLiteral("/defaults.plist"));
    EXPECT_FALSE(defaults.set("key", "value"));
    EXPECT_EQ(defaults.string("key"), QStringLiteral("value"));
}

TEST_F(UserDefaultsTest, ObserversHearOnlyChangesOfTheValueInForce) {
    UserDefaults defaults(path());
    {
        ChangeRecorder changes(defaults);
        defaults.registerDefaults({{"a", 1}, {"b", true}});
        EXPECT_EQ(changes.keys, (QStringList{"a", "b"}));
        defaults.registerDefaults({{"a", 1}});
        EXPECT_EQ(changes.keys.size(), 2) << "registering the same value again changes nothing";

        defaults.set("a", 1); // stored, but the value in force is the same
        defaults.set("c", "new");
        defaults.set("c", "new");
        EXPECT_EQ(changes.keys, (QStringList{"a", "b", "c"}));

        defaults.set("b", false);
        defaults.registerDefaults({{"b", "hidden"}}); // hidden behind the persistent value
        defaults.remove("a");                         // falls back to an equal registered value
        defaults.remove("absent");
        EXPECT_EQ(changes.keys, (QStringList{"a", "b", "c", "b"}));
    }
    defaults.set("a", 1);
    ChangeRecorder changes(defaults);
    defaults.removePersistentDomain();
    // "a" was persistent too, but its registered value is the same.
    EXPECT_EQ(changes.keys, (QStringList{"b", "c"}));
}

TEST_F(UserDefaultsTest, RemovingThePersistentDomainDeletesTheFileAndForgetsEverything) {
    QDir().mkpath(QFileInfo(path()).absolutePath());
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("stale");
    file.close();

    UserDefaults defaults(path());
    defaults.registerDefaults({{"kept", "registered"}});
    defaults.set("kept", "persistent");
    defaults.set("other", 1);

    EXPECT_TRUE(defaults.removePersistentDomain());
    EXPECT_FALSE(QFile::exists(path()));
    EXPECT_TRUE(defaults.persistentDomain().isEmpty());
    EXPECT_EQ(defaults.string("kept"), QStringLiteral("registered"));
    EXPECT_TRUE(UserDefaults(path()).persistentDomain().isEmpty());
    // Removing it again, with no file left, is no failure.
    EXPECT_TRUE(defaults.removePersistentDomain());
}
