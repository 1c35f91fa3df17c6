#pragma once

#include "documents/SigningFixture.h"

#include "documents/ProfileDocument.h"
#include "documents/ProfileSigningBridge.h"
#include "plist/PlistReader.h"
#include "plist/UserDefaults.h"
#include "plist/XmlWriter.h"
#include "shell/FactoryDefaults.h"
#include "support/DataManifests.h"
#include "support/TestSupport.h"
#include "ui/DocumentController.h"
#include "ui/DocumentWindow.h"
#include "ui/PassphraseDialog.h"
#include "workspace/PFMSection.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTest>
#include <QTimer>

#include <functional>

namespace quorlin::test {

// The domains of the build's bundled manifests, read once for the suite.
inline const Profile::DomainList& bundledDomains() {
    static const Profile::DomainList domains = bundledManifestDomains();
    return domains;
}

// The serialised profile, as a save writes it before signing.
inline QByteArray profileBytes(const Profile& profile) {
    const auto bytes = plist::XmlWriter::write(plist::Value(profile.profileDictionary()));
    return bytes ? *bytes : QByteArray();
}

template <class Widget = QWidget>
Widget* visibleWidget(const QString& objectName) {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->objectName() == objectName && widget->isVisible()) {
            if (auto* typed = qobject_cast<Widget*>(widget))
                return typed;
        }
    }
    return nullptr;
}

template <class Widget = QWidget>
Widget* waitForWidget(const QString& objectName) {
    Widget* found = nullptr;
    return QTest::qWaitFor([&] { return (found = visibleWidget<Widget>(objectName)) != nullptr; }, 5000)
               ? found
               : nullptr;
}

// Answers a dialog that a later call runs in a loop of its own, once it shows.
template <class Widget>
void answerWhenShown(const QString& objectName, std::function<void(Widget&)> answer) {
    auto* timer = new QTimer(qApp);
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, objectName, answer] {
        if (Widget* widget = visibleWidget<Widget>(objectName)) {
            timer->stop();
            timer->deleteLater();
            answer(*widget);
        }
    });
    timer->start();
}

inline PFMSection* sectionTitled(DocumentWindow& window, const QString& title) {
    for (PFMSection* section : window.sections().content()) {
        if (section->sectionKind() != PFMSection::Kinds::groupTitle &&
            section->sectionProperties().title == title)
            return section;
    }
    return nullptr;
}

// The editor's documents over the bundled manifests, with settings, a
// signing store and a folder of their own.
class EditorFixture : public SigningFixture {
protected:
    void SetUp() override {
        ASSERT_FALSE(bundledDomains().isEmpty());
        defaults.registerDefaults(FactoryDefaults::registeredDefaults());
    }

    void TearDown() override {
        // Window-modal boxes of a failed test must not answer the next one.
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible())
                widget->hide();
        }
    }

    DocumentController::Supply supply() {
        DocumentController::Supply made;
        made.domains = [] { return bundledDomains(); };
        made.environment = [this]() -> std::shared_ptr<const ProfileEnvironment> {
            auto environment = std::make_shared<ProfileEnvironment>(*ProfileEnvironment::makeSystem());
            environment->signingServices = std::make_shared<ProfileSigningBridge>(
                SigningServices(&passphraseDialog, path(QStringLiteral("data"))));
            return environment;
        };
        return made;
    }

    // A copy of a fixture profile, so saving can't touch the fixture.
    QString copyProfile(const QString& name) {
        const QString copy = path(name);
        QFile::remove(copy);
        EXPECT_TRUE(QFile::copy(testDataPath(QStringLiteral("ui/") + name), copy));
        QFile(copy).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        return copy;
    }

    DocumentWindow* open(const QString& filePath) {
        const auto opened = controller.openDocument(filePath);
        EXPECT_TRUE(opened) << (opened ? "" : opened.error().words.toStdString());
        return opened ? *opened : nullptr;
    }

    // A shown window on a copy of a fixture profile.
    DocumentWindow* openShown(const QString& name) {
        DocumentWindow* window = open(copyProfile(name));
        if (window) {
            window->show();
            EXPECT_TRUE(QTest::qWaitForWindowExposed(window));
        }
        return window;
    }

    UserDefaults defaults{path(QStringLiteral("defaults.plist"))};
    PassphraseDialog passphraseDialog;
    DocumentController controller{defaults, supply()};
};

} // namespace quorlin::test
