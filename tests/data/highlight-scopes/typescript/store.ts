: import type { Action } from './action';
= kkkkkk kkkk   tttttt   kkkk ssssssssss
:
: /* A store keeps one state
= ccccccccccccccccccccccccccc
:    and tells its listeners. */
= cccccccccccccccccccccccccccccc
: export interface State {
= kkkkkk kkkkkkkkk ttttt
:   readonly count: number;
=   kkkkkkkk        kkkkkk
:   label?: string | undefined;
=           kkkkkk   bbbbbbbbb
:   tags: ReadonlyArray<string>;
=         ttttttttttttt kkkkkk
: }
:
: type Listener<T extends object = State> = (state: T) => void;
= kkkk tttttttt t kkkkkkk kkkkkk   ttttt            t     kkkk
: declare namespace App { const version: unique symbol; }
= kkkkkkk kkkkkkkkk ttt   kkkkk          kkkkkk kkkkkk
: enum Level { Low = 0x01, High = 0b10 }
= kkkk ttttt   ttt   nnnn  tttt   nnnn
:
: @Injectable({ scope: "root" })
= aaaaaaaaaaa          ssssss
: export abstract class Store<T extends State> implements Disposable {
= kkkkkk kkkkkkkk kkkkk ttttt t kkkkkkk ttttt  kkkkkkkkkk tttttttttt
:   private listeners: Listener<T>[] = [];
=   kkkkkkk            tttttttt t
:   protected constructor(public state: T, private readonly limit = 1e3) {}
=   kkkkkkkkk fffffffffff kkkkkk        t  kkkkkkk kkkkkkkk         nnn
:
:   @Log() // for debugging
=   aaaa   cccccccccccccccc
:   dispatch(action: Action): asserts action is Action {
=   ffffffff         tttttt   kkkkkkk        kk tttttt
:     const message = `state ${this.state.count}
=     kkkkk           sssssssssssssssssssssssssss
:       is now "${action.type}" // not a comment`;
= sssssssssssssssssssssssssssssssssssssssssssssss
:     if (action === null || this.listeners.length > this.limit) {
=     kk             bbbb    kkkk                    kkkk
:       throw new TypeError('too many \'listeners\'');
=       kkkkk kkk fffffffff ssssssssssssssssssssssss
:     }
:     for (const listener of this.listeners) {
=     kkk  kkkkk          kk kkkk
:       listener(this.state as T);
=       ffffffff kkkk       kk t
:     }
:     console.log(message, "see https://example.org");
=     bbbbbbb fff                     cccccccccccccccc
:     const left = ${lost} + ${{ a: 1 }};
=     kkkkk        eeeeeee   eeeeeeeeeee
:   }
:
:   get size(): bigint { return BigInt(this.listeners.length); }
=   kkk ffff    kkkkkk   kkkkkk ffffff kkkk
:   abstract reset(): void;
=   kkkkkkkk fffff    kkkk
: }
:
: export function isState(value: unknown): value is State {
= kkkkkk kkkkkkkk fffffff        kkkkkkk         kk ttttt
:   return typeof value === 'object' && value !== null && 'count' in value;
=   kkkkkk kkkkkk           ssssssss              bbbb    sssssss kk
: }
: let level = Level.High satisfies number, odd: never, keys: keyof State, ratio = 12.5, none = NaN;
= kkk         ttttt tttt kkkkkkkkk kkkkkk       kkkkk        kkkkk ttttt          nnnn         bbb
:
