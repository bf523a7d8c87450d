# The macOS backend's sources. A build with Apple's frameworks has them, and so has the one that checks
# this backend elsewhere.
set(utilsdll_mac_sources
    mac/Alert.mm
    mac/Application.mm
    mac/Cocoa_p.h
    mac/Files.mm
    mac/Folders.mm
    mac/NativeWindow_p.h
    mac/Notifications.mm
    mac/Processes.mm
    mac/Text_p.h
    mac/Windows.mm
    posix/FolderTree.cpp
    posix/PasswordEntry.cpp
    posix/PasswordEntry_p.h)
list(TRANSFORM utilsdll_mac_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/../)
