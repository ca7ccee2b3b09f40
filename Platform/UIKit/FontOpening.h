#pragma once

#include <string>

namespace flarebox {

/// Posted on the main thread once fonts that were opened in the background are open.
inline constexpr const char* UIFontsDidOpenNotification = "UIFontsDidOpenNotification";

/// Opens the fonts of ordinary texts on a thread of its own: the first of them takes some ten milliseconds, for which
/// a game's frame has no room. Until it is done, texts take room by estimate and are not drawn; labels made meanwhile
/// follow by themselves. To be called before the first text is asked for: fonts that are in use stay in use. Shutdown
/// ends the thread. Main thread.
void openFontsInBackground();
/// Whether texts are still measured by estimate. Main thread.
bool fontsAreOpening();

/// Whether the system gives what opening another font takes. Where it does not, which is said in the log, fonts
/// count as being opened until it does. The library would end the process. Main thread.
bool anotherFontCanBeOpened();

/// Makes a font file (TrueType or OpenType) known to the process, for as long as it lives; answers the family's name,
/// which is empty when the file cannot be read or holds no font. Takes milliseconds. Main thread.
std::string addFontFile(const std::string& path);
/// Whether fonts of that family are installed or have been added. Takes some ten milliseconds. Main thread.
bool isFontFamilyKnown(const std::string& family);

}  // namespace flarebox
