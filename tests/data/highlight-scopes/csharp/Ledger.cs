: #nullable enable
= ppppppppp
: using System;
= kkkkk tttttt
: using System.Collections.Generic;
= kkkkk tttttt ttttttttttt ttttttt
:
: namespace Example.Ledger;
= kkkkkkkkk ttttttt tttttt
:
= p
: #region Types
= ppppppp ttttt
: [Serializable]
= aaaaaaaaaaaaaa
: [Obsolete("use Book", error: false)]
=  ffffffff ssssssssss         bbbbb
: public sealed record Entry(string Name, decimal Amount);
= kkkkkk kkkkkk kkkkkk fffff kkkkkk tttt  kkkkkkk tttttt
: #endregion
= pppppppppp
:
: // Sums what was booked.
= cccccccccccccccccccccccc
: public abstract class Ledger : IDisposable
= kkkkkk kkkkkkkk kkkkk tttttt   ttttttttttt
: {
:     private readonly List<Entry> _entries = new();
=     kkkkkkk kkkkkkkk tttt ttttt             kkk
:     private const int Limit = 0x1F_FF;
=     kkkkkkk kkkkk kkk ttttt   nnnnnnn
:     private static readonly string Path = @"C:\ledger\""main"".txt
=     kkkkkkk kkkkkk kkkkkkkk kkkkkk tttt   sssssssssssssssssssssssss
: second line // still the string";
= ssssssssssssssssssssssssssssssss
:     private static readonly double Rate = 1.25e-3;
=     kkkkkkk kkkkkk kkkkkkkk kkkkkk tttt   nnnnnnn
:
:     public decimal Total { get; private set; }
=     kkkkkk kkkkkkk ttttt   kkk  kkkkkkk kkk
:     public string? Owner { get => _owner; set { _owner = value; } }
=     kkkkkk kkkkkk  ttttt   kkk            kkk            bbbbb
:
= p
:     #  pragma warning disable
= ppppppppppppp
:     public virtual async Task<bool> BookAsync(Entry entry, params object[] rest)
=     kkkkkk kkkkkkk kkkkk tttt kkkk  fffffffff ttttt        kkkkkk kkkkkk
:     {
:         if (entry is null || _entries.Count >= Limit)
=         kk        kk bbbb             ttttt    ttttt
:             throw new ArgumentException("full: \"" + nameof(entry) + '"');
=             kkkkk kkk fffffffffffffffff ssssssssss   ffffff          sss
:         foreach (var other in _entries)
=         kkkkkkk  kkk       kk
:         {
:             Console.WriteLine($"{other.Name}: {other.Amount:0.00} // {Rate}");
=             ttttttt fffffffff          tttt          tttttt nnnn  cccccccccccc
:         }
:         char separator = ';', quote = '\'';
=         kkkk             sss          ssss
:         checked { Total += entry.Amount; }
=         kkkkkkk   ttttt          tttttt
:         await Task.Delay (10);
=         kkkkk tttt fffff  nn
:         return true;
=         kkkkkk bbbb
:     }
:
:     /* Block comments are code to the rules: if (false) "x" */
=        ttttt                                 kk  bbbbb  sss
:     public void Dispose() => GC.SuppressFinalize(this);
=     kkkkkk kkkk fffffff      tt ffffffffffffffff kkkk
:     protected internal ref readonly int At(int[] values, int index) => ref values[index];
=     kkkkkkkkk kkkkkkkk kkk kkkkkkkk kkk ff kkk           kkk           kkk
: }
:
