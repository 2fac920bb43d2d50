import Foundation
#if canImport(Combine)
import Combine
#endif

/* Keeps what is on the shelves.
   Counts never go below zero; see `remove`. */
@MainActor
public final class Inventory: ObservableObject {
    struct Item: Hashable {
        let name: String
        var count: Int = 0
        var price: Double? = nil
    }

    @Published private(set) var items: [Item] = []
    private let limit = 0xFF_FF, ratio = 1.5e-3, mask = 0b1010_0001
    static let banner = """
        Inventory // not a comment
        "quoted" /* nor this */ \(Int.max)
        """
    static let pattern = #"^\d+ "units"$"#

    subscript(name: String) -> Item? {
        get { items.first { $0.name == name } }
    }

    // Adds as many as fit.
    func add(_ name: String, count: Int) throws -> Int {
        guard count > 0, let index = items.firstIndex(where: { $0.name == name }) else {
            throw InventoryError.unknown("no \"\(name)\" here")
        }
        items[index].count = min(limit, items[index].count + count)
        return items[index].count
    }

    func remove(_ name: String) async -> Bool {
        for case let item as Item in items where item.name == name {
            await log("removed \(item.name) at \(item.price ?? 0)")
            return true
        }
        return false
    }

    deinit { print("gone") }
}

extension Inventory {
    #warning("Describe the error better")
    enum InventoryError: Error { case unknown(String), full }
    func isEmpty() -> Bool { self.items.isEmpty || Self.banner == "" && super.self is Any }
    // Left over from a macro: \(name) and \(max(1, 2)).
    let left = \(name)
}
