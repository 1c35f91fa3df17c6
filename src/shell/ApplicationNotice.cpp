#include "shell/ApplicationNotice.h"

#include "plist/DefaultsKey.h"

#include <QCoreApplication>

namespace quorlin {

namespace {

using Button = ApplicationNotice::Button;
using Key = ApplicationNotice::KeyEquivalent;

QString tr(const char* text) {
    return QCoreApplication::translate("ApplicationNotice", text);
}

Button okButton() {
    return {tr("OK"), ApplicationNotice::dismiss, Key::returnKey};
}
Button changeButton() {
    return {tr("Change"), ApplicationNotice::change, Key::escapeKey};
}

} // namespace

ApplicationNotice ApplicationNotice::onlineSettingsInvalid(bool addressIsValid, bool branchIsValid) {
    ApplicationNotice notice;
    notice.style = Style::warning;
    notice.title = tr("Online Manifest Repository Settings Invalid");
    if (!addressIsValid && !branchIsValid)
        notice.informativeText =
            tr("Both the online manifest repository address and branch name set are invalid.");
    else if (!addressIsValid)
        notice.informativeText = tr("The set online manifest repository address is invalid.");
    else
        notice.informativeText = tr("The set online manifest repository branch name is invalid.");
    notice.buttons = {okButton()};
    return notice;
}

ApplicationNotice ApplicationNotice::onlineVerificationFailed(bool noInternetConnection) {
    ApplicationNotice notice;
    notice.style = Style::warning;
    if (noInternetConnection) {
        notice.title = tr("No Internet Connection");
        notice.informativeText = tr("The online manifest repository settings could not be verified because "
                                    "there is no internet connection.");
    } else {
        notice.title = tr("Online Manifest Repository Settings Not Verified");
        notice.informativeText =
            tr("The online manifest repository settings could not be verified with GitHub.");
    }
    notice.buttons = {{tr("Try Again"), tryAgain, Key::returnKey},
                      {tr("Revert to Previous Settings"), revert, Key::none},
                      changeButton()};
    return notice;
}

ApplicationNotice ApplicationNotice::largeLocalFolder(int limit) {
    ApplicationNotice notice;
    notice.style = Style::warning;
    notice.title = tr("Large Amount of Plist Files In Provided Folder");
    notice.informativeText =
        tr("The provided folder contains over %1 Plist files and scanning of them all may "
           "take some time.\n\nAre you sure that you want to use it as a local manifest "
           "repository?")
            .arg(limit);
    notice.buttons = {{tr("Use Provided Folder"), accept, Key::returnKey}, changeButton()};
    return notice;
}

ApplicationNotice ApplicationNotice::localFolderInvalid() {
    ApplicationNotice notice;
    notice.style = Style::warning;
    notice.title = tr("Local Manifest Repository Settings Invalid");
    notice.informativeText =
        tr("A valid preference manifest repository could not be found in the provided folder.");
    notice.buttons = {okButton()};
    return notice;
}

ApplicationNotice ApplicationNotice::folderAccessDenied() {
    ApplicationNotice notice;
    notice.style = Style::warning;
    notice.title = tr("Folder Not Accessible");
    notice.informativeText = tr("Persistant access to the selected folder could not be established.");
    notice.buttons = {okButton()};
    return notice;
}

ApplicationNotice ApplicationNotice::reloadAfterRepositoryChange(int openProfileCount) {
    const bool singular = openProfileCount == 1;
    ApplicationNotice notice;
    notice.style = Style::warning;
    notice.title = singular ? tr("Reload Profile?") : tr("Reload Profiles?");
    notice.informativeText =
        tr("Changes made to the manifest repository settings will only be reflected after "
           "reloading.");
    notice.buttons = {{singular ? tr("Reload Profile") : tr("Reload All Profiles"), accept, Key::returnKey},
                      {tr("Dismiss"), dismiss, Key::escapeKey}};
    notice.suppressionKey = DefaultsKey::noticeSuppressReloadProfileOnRepositoryChange;
    return notice;
}

ApplicationNotice ApplicationNotice::localRepositoryUnavailable(const std::optional<QString>& path) {
    ApplicationNotice notice;
    notice.title = tr("Local Manifest Repository Folder Unavailable");
    notice.informativeText =
        path ? tr("The folder %1, which is set as the local manifest repository, is not available.\n\n"
                  "Bundled preference manifests are used instead.")
                   .arg(*path)
             : tr("The folder set as the local manifest repository is not available.\n\n"
                  "Bundled preference manifests are used instead.");
    notice.buttons = {{tr("Change Repository Preferences"), accept, Key::returnKey},
                      {tr("Dismiss"), dismiss, Key::escapeKey}};
    return notice;
}

ApplicationNotice ApplicationNotice::resetToFactorySettings(const QString& programName) {
    ApplicationNotice notice;
    notice.style = Style::warning;
    notice.title = tr("Are You Sure?");
    notice.informativeText =
        tr("Resetting will close all profiles, remove all user-set preferences, clear downloaded manifests, "
           "and restart the app.\n\nAre you sure you want to reset %1 to its factory state now?")
            .arg(programName);
    notice.buttons = {{tr("Reset"), accept, Key::returnKey}, {tr("Cancel"), dismiss, Key::escapeKey}};
    return notice;
}

} // namespace quorlin
