: -- The library: books, members and loans.
= ccccccccccccccccccccccccccccccccccccccccc
: BEGIN TRANSACTION;
= kkkkk kkkkkkkkkkk
:
: /* Members never vanish;
= ccccccccccccccccccccccccc
:    'deleted' is a column -- like any other. */
= cccccccccccccccccccccccccccccccccccccccccccccc
: CREATE TABLE members (
= kkkkkk kkkkk
:     id SERIAL PRIMARY KEY,
=        tttttt kkkkkkk
:     name VARCHAR(80) NOT NULL,
=          ttttttt nn  kkk bbbb
:     "joined at" TIMESTAMP DEFAULT CURRENT_TIMESTAMP,
=     aaaaaaaaaaa ttttttttt kkkkkkk bbbbbbbbbbbbbbbbb
:     fee DECIMAL(6, 2) CHECK (fee >= 0.50),
=         ttttttt n  n  kkkkk         nnnn
:     notes text,
=           tttt
:     extra jsonb DEFAULT '{"card": "it''s blue"}',
=           ttttt kkkkkkk ssssssssssssssssssssssss
:     deleted BOOLEAN DEFAULT false
=             ttttttt kkkkkkk bbbbb
: );
:
: create unique index members_name on members (name); -- for the search
= kkkkkk kkkkkk kkkkk              kk                 ccccccccccccccccc
:
: ALTER TABLE loans
= kkkkk kkkkk
:     ADD COLUMN due DATE,
=     kkk kkkkkk     tttt
:     ADD CONSTRAINT fk_member FOREIGN KEY (member) REFERENCES members (id);
=     kkk kkkkkkkkkk           kkkkkkk              kkkkkkkkkk
:
: INSERT INTO members (name, fee)
= kkkkkk kkkk
: VALUES ('Ada', 12.50), ('O''Neill', 0), ('two
= kkkkkk  sssss  nnnnn    ssssssssss  n    sssss
: lines', NULL);
= ssssss  bbbb
:
: WITH late AS (
= kkkk      kk
:     SELECT member, COUNT(*) AS n, MAX(due) AS latest
=     kkkkkk         bbbbb    kk    bbb      kk
:     FROM loans
=     kkkk
:     WHERE due < NOW() AND returned IS NULL
=     kkkkk       bbb   kkk          kk bbbb
:     GROUP BY member
=     kkkkk kk
:     HAVING COUNT(*) > 3
=     kkkkkk bbbbb      n
: )
: SELECT DISTINCT m.name, l.n, coalesce(m.notes, 'none') AS "the ""notes"""
= kkkkkk kkkkkkkk              bbbbbbbb          ssssss  kk aaaaaaaaaaaaaaa
: FROM members m
= kkkk
: LEFT OUTER JOIN late l ON l.member = m.id
= kkkk kkkkk kkkk        kk
: WHERE m.name LIKE 'A%' OR m.id IN (1, 2, 3)
= kkkkk        kkkk ssss kk      kk  n  n  n
: ORDER BY l.n DESC, m.name ASC
= kkkkk kk     kkkk         kkk
: LIMIT 10 OFFSET 20;
= kkkkk nn kkkkkk nn
:
: UPDATE members SET fee = CASE WHEN fee > 10 THEN fee * 0.9 ELSE fee END;
= kkkkkk         kkk       kkkk kkkk       nn kkkk       nnn kkkk     kkk
: DELETE FROM loans WHERE due BETWEEN '2020-01-01' AND '2021-01-01';
= kkkkkk kkkk       kkkkk     kkkkkkk ssssssssssss kkk ssssssssssss
: COMMIT;
= kkkkkk
:
