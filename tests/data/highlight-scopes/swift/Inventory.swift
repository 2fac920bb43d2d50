: import Foundation
= kkkkkk tttttttttt
: #if canImport(Combine)
= ppp fffffffff ttttttt
: import Combine
= kkkkkk ttttttt
: #endif
= pppppp
:
: /* Keeps what is on the shelves.
= ccccccccccccccccccccccccccccccccc
:    Counts never go below zero; see `remove`. */
= ccccccccccccccccccccccccccccccccccccccccccccccc
: @MainActor
= aaaaaaaaaa
: public final class Inventory: ObservableObject {
= kkkkkk kkkkk kkkkk ttttttttt  tttttttttttttttt
:     struct Item: Hashable {
=     kkkkkk tttt  tttttttt
:         let name: String
=         kkk       tttttt
:         var count: Int = 0
=         kkk        ttt   n
:         var price: Double? = nil
=         kkk        tttttt    bbb
:     }
:
:     @Published private(set) var items: [Item] = []
=     aaaaaaaaaa kkkkkkk kkk  kkk         tttt
:     private let limit = 0xFF_FF, ratio = 1.5e-3, mask = 0b1010_0001
=     kkkkkkk kkk         nnnnnnn          nnnnnn         nnnnnnnnnnn
:     static let banner = """
=     kkkkkk kkk          ssss
:         Inventory // not a comment
= sssssssssssssssssssssssssssssssssss
:         "quoted" /* nor this */ \(Int.max)
= sssssssssssssssssssssssssssssssssssssssssss
:         """
= sssssssssss
:     static let pattern = #"^\d+ "units"$"#
=     kkkkkk kkk           ssssssss     ssss
:
:     subscript(name: String) -> Item? {
=     kkkkkkkkk       tttttt     tttt
:         get { items.first { $0.name == name } }
=         kkk                  n
:     }
:
:     // Adds as many as fit.
=     ccccccccccccccccccccccc
:     func add(_ name: String, count: Int) throws -> Int {
=     kkkk fff         tttttt         ttt  kkkkkk    ttt
:         guard count > 0, let index = items.firstIndex(where: { $0.name == name }) else {
=         kkkkk         n  kkk               ffffffffff kkkkk     n                 kkkk
:             throw InventoryError.unknown("no \"\(name)\" here")
=             kkkkk tttttttttttttt fffffff sssssssssssssssssssss
:         }
:         items[index].count = min(limit, items[index].count + count)
=                              fff
:         return items[index].count
=         kkkkkk
:     }
:
:     func remove(_ name: String) async -> Bool {
=     kkkk ffffff         tttttt  kkkkk    tttt
:         for case let item as Item in items where item.name == name {
=         kkk kkkk kkk      bb tttt kk       kkkkk
:             await log("removed \(item.name) at \(item.price ?? 0)")
=             kkkkk fff ssssssssssssssssssssssssssssssssssssssssssss
:             return true
=             kkkkkk bbbb
:         }
:         return false
=         kkkkkk bbbbb
:     }
:
:     deinit { print("gone") }
=     kkkkkk   fffff ssssss
: }
:
: extension Inventory {
= kkkkkkkkk ttttttttt
:     #warning("Describe the error better")
= pppppppppppp sssssssssssssssssssssssssss
:     enum InventoryError: Error { case unknown(String), full }
=     kkkk tttttttttttttt  ttttt   kkkk fffffff tttttt
:     func isEmpty() -> Bool { self.items.isEmpty || Self.banner == "" && super.self is Any }
=     kkkk fffffff      tttt   bbbb                  bbbb           ss    bbbbb bbbb bb ttt
:     // Left over from a macro: \(name) and \(max(1, 2)).
=     cccccccccccccccccccccccccccccccccccccccccccccccccccc
:     let left = \(name)
=     kkk        eeeeeee
: }
:
