#!/usr/bin/env node
'use strict';
import { readFile } from 'node:fs/promises';

/* The cart of one visitor.
   Prices are in cents: `never` as "fractions". */
const LIMIT = 1_000, RATE = 0.19, MASK = 0xff, BIG = 12.5e3;

export class Cart extends Map {
  #items = [];

  constructor(owner = null) {
    super();
    this.owner = owner; // may be null
  }

  get total() {
    return this.#items.reduce((sum, { price }) => sum + price, 0);
  }

  static async load(path) {
    try {
      const text = await readFile(path, "utf8");
      return JSON.parse(text);
    } catch (error) {
      console.error(`could not load "${path}": ${error.message}
        // second line of the template, \` escaped`);
      throw new Error('cart \'missing\'');
    } finally {
      debugger;
    }
  }

  *pages(size) {
    for (let i = 0; i < this.#items.length; i += size) {
      yield this.#items.slice(i, i + size);
    }
  }
}

const url = "https://example.org/cart";
const lost = ${name} + ${ { a: 1 } };
if (typeof window === 'undefined' && process.env.DEBUG !== undefined) {
  require('./debug') (globalThis);
}
module.exports = { Cart, nothing: NaN, all: Infinity, on: true };
