// SPDX-License-Identifier: MIT
#pragma once

// As much of the macOS framework as our own code calls, for compilers on other systems.

typedef bool BOOL;
typedef unsigned long NSUInteger;
typedef unsigned short unichar;

#define nil nullptr

@class NSError;

__attribute__((objc_root_class))
@interface NSObject
@end

@interface NSString : NSObject
+ (instancetype)stringWithCharacters:(const unichar *)characters length:(NSUInteger)length;
@end

@interface NSURL : NSObject
+ (NSURL *)fileURLWithPath:(NSString *)path isDirectory:(BOOL)isDir;
@end

@interface NSFileManager : NSObject
+ (NSFileManager *)defaultManager;
- (BOOL)moveItemAtURL:(NSURL *)srcURL toURL:(NSURL *)dstURL error:(NSError **)error;
#ifndef WITHOUT_TRASH
- (BOOL)trashItemAtURL:(NSURL *)url
      resultingItemURL:(NSURL **)outResultingURL
                 error:(NSError **)error;
#endif
@end
