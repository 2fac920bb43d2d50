-- The library: books, members and loans.
BEGIN TRANSACTION;

/* Members never vanish;
   'deleted' is a column -- like any other. */
CREATE TABLE members (
    id SERIAL PRIMARY KEY,
    name VARCHAR(80) NOT NULL,
    "joined at" TIMESTAMP DEFAULT CURRENT_TIMESTAMP,
    fee DECIMAL(6, 2) CHECK (fee >= 0.50),
    notes text,
    extra jsonb DEFAULT '{"card": "it''s blue"}',
    deleted BOOLEAN DEFAULT false
);

create unique index members_name on members (name); -- for the search

ALTER TABLE loans
    ADD COLUMN due DATE,
    ADD CONSTRAINT fk_member FOREIGN KEY (member) REFERENCES members (id);

INSERT INTO members (name, fee)
VALUES ('Ada', 12.50), ('O''Neill', 0), ('two
lines', NULL);

WITH late AS (
    SELECT member, COUNT(*) AS n, MAX(due) AS latest
    FROM loans
    WHERE due < NOW() AND returned IS NULL
    GROUP BY member
    HAVING COUNT(*) > 3
)
SELECT DISTINCT m.name, l.n, coalesce(m.notes, 'none') AS "the ""notes"""
FROM members m
LEFT OUTER JOIN late l ON l.member = m.id
WHERE m.name LIKE 'A%' OR m.id IN (1, 2, 3)
ORDER BY l.n DESC, m.name ASC
LIMIT 10 OFFSET 20;

UPDATE members SET fee = CASE WHEN fee > 10 THEN fee * 0.9 ELSE fee END;
DELETE FROM loans WHERE due BETWEEN '2020-01-01' AND '2021-01-01';
COMMIT;
