// SPDX-License-Identifier: MIT
#include "ui/results/Trash.h"

#include "ui/results/FileState.h"

#include <QFileInfo>

#import <Foundation/Foundation.h>

bool Trash::moveFile(
    const QString &path, const FileState *seen, const std::function<bool()> &mayStay)
{
    // The system takes a path and no open file, so this is as close as the look can come.
    if (seen != nullptr && !FileState::of(path).isSameFileAs(*seen)) {
        return false;
    }
    @autoreleasepool {
        NSString *const name =
            [NSString stringWithCharacters:reinterpret_cast<const unichar *>(path.utf16())
                                    length:static_cast<NSUInteger>(path.size())];
        NSURL *const url = [NSURL fileURLWithPath:name isDirectory:QFileInfo(path).isDir()];
        NSFileManager *const files = [NSFileManager defaultManager];
        NSURL *trashed = nil;
        if (![files trashItemAtURL:url resultingItemURL:&trashed error:nil]) {
            return false;
        }
        return !mayStay || mayStay() || trashed == nil
            || ![files moveItemAtURL:trashed toURL:url error:nil];
    }
}

bool Trash::holds(const QString &path)
{
    return path.contains(QLatin1String("/.Trash/")) || path.contains(QLatin1String("/.Trashes/"));
}
