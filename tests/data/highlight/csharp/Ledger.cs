#nullable enable
using System;
using System.Collections.Generic;

namespace Example.Ledger;

#region Types
[Serializable]
[Obsolete("use Book", error: false)]
public sealed record Entry(string Name, decimal Amount);
#endregion

// Sums what was booked.
public abstract class Ledger : IDisposable
{
    private readonly List<Entry> _entries = new();
    private const int Limit = 0x1F_FF;
    private static readonly string Path = @"C:\ledger\""main"".txt
second line // still the string";
    private static readonly double Rate = 1.25e-3;

    public decimal Total { get; private set; }
    public string? Owner { get => _owner; set { _owner = value; } }

    #  pragma warning disable
    public virtual async Task<bool> BookAsync(Entry entry, params object[] rest)
    {
        if (entry is null || _entries.Count >= Limit)
            throw new ArgumentException("full: \"" + nameof(entry) + '"');
        foreach (var other in _entries)
        {
            Console.WriteLine($"{other.Name}: {other.Amount:0.00} // {Rate}");
        }
        char separator = ';', quote = '\'';
        checked { Total += entry.Amount; }
        await Task.Delay (10);
        return true;
    }

    /* Block comments are code to the rules: if (false) "x" */
    public void Dispose() => GC.SuppressFinalize(this);
    protected internal ref readonly int At(int[] values, int index) => ref values[index];
}
