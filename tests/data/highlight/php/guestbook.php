<?php
declare(strict_types=1);

namespace Example\Guestbook;

use DateTimeImmutable;

/* One entry of the book.
   $name and "text" come from outside. */
abstract class Entry implements \JsonSerializable
{
    use Timestamps;

    private const LIMIT = 0x1F, RATE = 1.5e3, BITS = 0b11;
    protected static ?array $cache = null;

    public function __construct(
        public readonly string $name,
        private ?string $text = null, // may be missing
    ) {
        # the old way to comment
        $this->text = trim($text ?? '');
    }

    public static function load(int $id): static
    {
        $query = <<<SQL
            SELECT * FROM "entries" -- $id
            WHERE id = {$id}
            SQL;
        $plain = <<<'EOT'
nothing $here
EOT;
        foreach (self::$cache as $key => $entry) {
            if (!isset($entry) || empty($entry->name) and $key instanceof Entry) {
                continue;
            }
            echo "<p class=\"entry\">{$entry->name} said: $entry->text</p>\n";
        }
        $double = fn(int $x): int => $x * 2;
        return match (true) {
            $id > 100 => throw new \OutOfRangeException('no \'such\' entry'),
            default => parent::find ($id),
        };
    }

    abstract public function jsonSerialize(): mixed;
}

$entries = array_map('strtoupper', ['a', 'b']);
?>
<ul>
<?php while ($row = $entries[0]): ?>
  <li><?= htmlspecialchars($row) ?></li>
<?php endwhile; ?>
</ul>
