: #import <Foundation/Foundation.h>
= ppppppp  tttttttttt tttttttttt
: @class Note;
=  kkkkk tttt
: @import Darwin;
= ppppppp tttttt
:
: /* Shows one note.
= ccccccccccccccccccc
:  * The text is copied when it is set. */
= cccccccccccccccccccccccccccccccccccccccc
: @interface NoteView : NSObject <NoteDelegate>
= pppppppppp tttttttt   tttttttt  tttttttttttt
: @property (nonatomic, copy) NSString *title;
=  ffffffff                   tttttttt
: @property (nonatomic, weak) id<NoteDelegate> delegate;
=  ffffffff                      tttttttttttt
: - (instancetype)initWithTitle:(NSString *)title;
=                                tttttttt
: @end
= pppp
:
: @protocol NoteDelegate
= ppppppppp tttttttttttt
: - (BOOL)noteView:(in NoteView *)view shouldSave:(out BOOL *)save;
=    tttt           kk tttttttt                    kkk tttt
: @end
= pppp
:
: @implementation NoteView
= ppppppppppppppp tttttttt
: @synthesize title = _title;
= ppppppppppp
: @dynamic delegate;
= pppppppp
:
: - (instancetype)initWithTitle:(NSString *)title
=                                tttttttt
: {
:     self = [super init];
=     kkkk    kkkkk
:     if (self != nil) {
=     kk  kkkk    bbb
:         _title = [title copy]; // an own copy
=                                cccccccccccccc
:     }
:     return self;
=     kkkkkk kkkk
: }
:
: - (void)save
=    kkkk
: {
:     @autoreleasepool {
=     pppppppppppppppp
:         @synchronized(self) {
=          ffffffffffff kkkk
:             NSString *line = @"saved \"twice\" // not a comment";
=             tttttttt                           cccccccccccccccccc
:             NSLog(@"%@ %d %c", line, YES, 'x');
=             fffff  ssssssssss        bbb  sss
:         }
:     }
:     @try {
=      kkk
:         [self performSelector:@selector(flush:) withObject:@{@"count": @42}];
=          kkkk                  ffffffff                       sssssss   nn
:     } @catch (NSException *exception) {
=        kkkkk  ttttttttttt
:         @throw;
=          kkkkk
:     } @finally {
=       pppppppp
:         if (@available(macOS 12, *)) { NSUInteger size = sizeof(uint32_t); }
=         kk   fffffffff       nn        tttttttttt        kkkkkk tttttttt
:     }
:     const char *type = @encode(int);
=     kkkkk kkkk          ffffff kkk
:     oneway void (^block)(void) = ^{ return; };
=     kkkkkk kkkk          kkkk       kkkkkk
: }
: @end
= pppp
:
