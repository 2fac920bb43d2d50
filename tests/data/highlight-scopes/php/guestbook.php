: <?php
= ppppp
: declare(strict_types=1);
= kkkkkkk              n
:
: namespace Example\Guestbook;
= kkkkkkkkk ttttttt ttttttttt
:
: use DateTimeImmutable;
= kkk ttttttttttttttttt
:
: /* One entry of the book.
= cccccccccccccccccccccccccc
:    $name and "text" come from outside. */
= ccccccccccccccccccccccccccccccccccccccccc
: abstract class Entry implements \JsonSerializable
= kkkkkkkk kkkkk ttttt kkkkkkkkkk  tttttttttttttttt
: {
:     use Timestamps;
=     kkk tttttttttt
:
:     private const LIMIT = 0x1F, RATE = 1.5e3, BITS = 0b11;
=     kkkkkkk kkkkk ttttt   nnnn  tttt   nnnnn  tttt   nnnn
:     protected static ?array $cache = null;
=     kkkkkkkkk kkkkkk  kkkkk vvvvvv   bbbb
:
:     public function __construct(
=     kkkkkk kkkkkkkk fffffffffff
:         public readonly string $name,
=         kkkkkk kkkkkkkk        vvvvv
:         private ?string $text = null, // may be missing
=         kkkkkkk         vvvvv   bbbb  ccccccccccccccccc
:     ) {
:         # the old way to comment
=         cccccccccccccccccccccccc
:         $this->text = trim($text ?? '');
=         vvvvv         ffff vvvvv    ss
:     }
:
:     public static function load(int $id): static
=     kkkkkk kkkkkk kkkkkkkk ffff     vvv   kkkkkk
:     {
:         $query = <<<SQL
=         vvvvvv   sssssss
:             SELECT * FROM "entries" -- $id
= sssssssssssssssssssssssssssssssssssssssssss
:             WHERE id = {$id}
= sssssssssssssssssssssssssssss
:             SQL;
= sssssssssssssss
:         $plain = <<<'EOT'
=         vvvvvv   sssssssss
: nothing $here
= ssssssssssssss
: EOT;
= sss
:         foreach (self::$cache as $key => $entry) {
=         kkkkkkk  bbbb  vvvvvv kk vvvv    vvvvvv
:             if (!isset($entry) || empty($entry->name) and $key instanceof Entry) {
=             kk   kkkkk vvvvvv     kkkkk vvvvvv        kkk vvvv kkkkkkkkkk ttttt
:                 continue;
=                 kkkkkkkk
:             }
:             echo "<p class=\"entry\">{$entry->name} said: $entry->text</p>\n";
=             kkkk ssssssssssssssssssssssssssssssssssssssssssssssssssssssssssss
:         }
:         $double = fn(int $x): int => $x * 2;
=         vvvvvvv   kk     vv          vv   n
:         return match (true) {
=         kkkkkk kkkkk  bbbb
:             $id > 100 => throw new \OutOfRangeException('no \'such\' entry'),
=             vvv   nnn    kkkkk kkk  fffffffffffffffffff sssssssssssssssssss
:             default => parent::find ($id),
=             kkkkkkk    bbbbbb  ffff  vvv
:         };
:     }
:
:     abstract public function jsonSerialize(): mixed;
=     kkkkkkkk kkkkkk kkkkkkkk fffffffffffff
: }
:
: $entries = array_map('strtoupper', ['a', 'b']);
= vvvvvvvv   fffffffff ssssssssssss   sss  sss
: ?>
= pp
: <ul>
: <?php while ($row = $entries[0]): ?>
= ppppp kkkkk  vvvv   vvvvvvvv n    pp
:   <li><?= htmlspecialchars($row) ?></li>
=       ppp ffffffffffffffff vvvv  pp
: <?php endwhile; ?>
= ppppp kkkkkkkk  pp
: </ul>
:
