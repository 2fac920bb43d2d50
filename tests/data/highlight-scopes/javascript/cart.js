: #!/usr/bin/env node
: 'use strict';
= ssssssssssss
: import { readFile } from 'node:fs/promises';
= kkkkkk              kkkk ssssssssssssssssss
:
: /* The cart of one visitor.
= cccccccccccccccccccccccccccc
:    Prices are in cents: `never` as "fractions". */
= cccccccccccccccccccccccccccccccccccccccccccccccccc
: const LIMIT = 1_000, RATE = 0.19, MASK = 0xff, BIG = 12.5e3;
= kkkkk ttttt   nnnnn  tttt   nnnn  tttt   nnnn  ttt   nnnnnn
:
: export class Cart extends Map {
= kkkkkk kkkkk tttt kkkkkkk ttt
:   #items = [];
:
:   constructor(owner = null) {
=   fffffffffff         bbbb
:     super();
=     kkkkk
:     this.owner = owner; // may be null
=     kkkk                cccccccccccccc
:   }
:
:   get total() {
=   kkk fffff
:     return this.#items.reduce((sum, { price }) => sum + price, 0);
=     kkkkkk kkkk        ffffff                                  n
:   }
:
:   static async load(path) {
=   kkkkkk kkkkk ffff
:     try {
=     kkk
:       const text = await readFile(path, "utf8");
=       kkkkk        kkkkk ffffffff       ssssss
:       return JSON.parse(text);
=       kkkkkk tttt fffff
:     } catch (error) {
=       kkkkk
:       console.error(`could not load "${path}": ${error.message}
=       bbbbbbb fffff ssssssssssssssssssssssssssssssssssssssssssss
:         // second line of the template, \` escaped`);
= sssssssssssssssssssssssssssssssssssssssssssssssssss
:       throw new Error('cart \'missing\'');
=       kkkkk kkk fffff ssssssssssssssssss
:     } finally {
=       kkkkkkk
:       debugger;
=       kkkkkkkk
:     }
:   }
:
:   *pages(size) {
=    fffff
:     for (let i = 0; i < this.#items.length; i += size) {
=     kkk  kkk     n      kkkk
:       yield this.#items.slice(i, i + size);
=       kkkkk kkkk        fffff
:     }
:   }
: }
:
: const url = "https://example.org/cart";
= kkkkk              cccccccccccccccccccc
: const lost = ${name} + ${ { a: 1 } };
= kkkkk        eeeeeee           n
: if (typeof window === 'undefined' && process.env.DEBUG !== undefined) {
= kk  kkkkkk bbbbbb     sssssssssss    bbbbbbb     ttttt     bbbbbbbbb
:   require('./debug') (globalThis);
=   bbbbbbb sssssssss   bbbbbbbbbb
: }
: module.exports = { Cart, nothing: NaN, all: Infinity, on: true };
= bbbbbb bbbbbbb     tttt           bbb       bbbbbbbb      bbbb
:
