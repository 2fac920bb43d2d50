#import <Foundation/Foundation.h>
@class Note;
@import Darwin;

/* Shows one note.
 * The text is copied when it is set. */
@interface NoteView : NSObject <NoteDelegate>
@property (nonatomic, copy) NSString *title;
@property (nonatomic, weak) id<NoteDelegate> delegate;
- (instancetype)initWithTitle:(NSString *)title;
@end

@protocol NoteDelegate
- (BOOL)noteView:(in NoteView *)view shouldSave:(out BOOL *)save;
@end

@implementation NoteView
@synthesize title = _title;
@dynamic delegate;

- (instancetype)initWithTitle:(NSString *)title
{
    self = [super init];
    if (self != nil) {
        _title = [title copy]; // an own copy
    }
    return self;
}

- (void)save
{
    @autoreleasepool {
        @synchronized(self) {
            NSString *line = @"saved \"twice\" // not a comment";
            NSLog(@"%@ %d %c", line, YES, 'x');
        }
    }
    @try {
        [self performSelector:@selector(flush:) withObject:@{@"count": @42}];
    } @catch (NSException *exception) {
        @throw;
    } @finally {
        if (@available(macOS 12, *)) { NSUInteger size = sizeof(uint32_t); }
    }
    const char *type = @encode(int);
    oneway void (^block)(void) = ^{ return; };
}
@end
