#include "cli/ProfileRoot.h"

#include "plist/PlistReader.h"

namespace quorlin::cli {

plist::Dictionary ProfileRoot::of(const OpenedProfile& opened) {
    const auto read = plist::PlistReader::read(opened.content);
    if (read && read->root.dictionary())
        return *read->root.dictionary();
    // Only a file that needed the reader's repair gets here; what the model
    // made of it is the nearest to what it holds.
    return opened.profile->profileDictionary();
}

} // namespace quorlin::cli
