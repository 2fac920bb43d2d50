import type { Action } from './action';

/* A store keeps one state
   and tells its listeners. */
export interface State {
  readonly count: number;
  label?: string | undefined;
  tags: ReadonlyArray<string>;
}

type Listener<T extends object = State> = (state: T) => void;
declare namespace App { const version: unique symbol; }
enum Level { Low = 0x01, High = 0b10 }

@Injectable({ scope: "root" })
export abstract class Store<T extends State> implements Disposable {
  private listeners: Listener<T>[] = [];
  protected constructor(public state: T, private readonly limit = 1e3) {}

  @Log() // for debugging
  dispatch(action: Action): asserts action is Action {
    const message = `state ${this.state.count}
      is now "${action.type}" // not a comment`;
    if (action === null || this.listeners.length > this.limit) {
      throw new TypeError('too many \'listeners\'');
    }
    for (const listener of this.listeners) {
      listener(this.state as T);
    }
    console.log(message, "see https://example.org");
    const left = ${lost} + ${{ a: 1 }};
  }

  get size(): bigint { return BigInt(this.listeners.length); }
  abstract reset(): void;
}

export function isState(value: unknown): value is State {
  return typeof value === 'object' && value !== null && 'count' in value;
}
let level = Level.High satisfies number, odd: never, keys: keyof State, ratio = 12.5, none = NaN;
