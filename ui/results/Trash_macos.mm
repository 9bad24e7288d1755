// SPDX-License-Identifier: MIT
#include "ui/results/Trash.h"

#include <QFileInfo>

#import <Foundation/Foundation.h>

bool Trash::moveFile(const QString &path)
{
    @autoreleasepool {
        NSString *const name =
            [NSString stringWithCharacters:reinterpret_cast<const unichar *>(path.utf16())
                                    length:static_cast<NSUInteger>(path.size())];
        NSURL *const url = [NSURL fileURLWithPath:name isDirectory:QFileInfo(path).isDir()];
        return [[NSFileManager defaultManager] trashItemAtURL:url resultingItemURL:nil error:nil];
    }
}
