: package org.example.jobs;
= kkkkkkk
:
: import java.util.List;
= kkkkkk           tttt
: import java.util.concurrent.TimeUnit;
= kkkkkk                      tttttttt
:
: // Runs jobs one after the other.
= ccccccccccccccccccccccccccccccccc
: @SuppressWarnings("unchecked")
= aaaaaaaaaaaaaaaaa sssssssssss
: public sealed class Scheduler<T extends Job> implements AutoCloseable permits Fast, Slow {
= kkkkkk kkkkkk kkkkk ttttttttt t kkkkkkk ttt  kkkkkkkkkk ttttttttttttt         tttt  tttt
:     private static final long LIMIT = 10_000L;
=     kkkkkkk kkkkkk kkkkk kkkk ttttt
:     private static final int MASK = 0xFF, BITS = 0b1010, OLD = 017;
=     kkkkkkk kkkkkk kkkkk kkk tttt   nnnn  tttt   nnnnnn  ttt   nnn
:     private volatile boolean running = false;
=     kkkkkkk kkkkkkkk kkkkkkk           bbbbb
:     private final List<T> jobs = new java.util.ArrayList<>();
=     kkkkkkk kkkkk tttt t         kkk           ttttttttt
:
:     public record Entry(String name, double weight) {}
=     kkkkkk kkkkkk fffff tttttt       kkkkkk
:
:     @Override
=     aaaaaaaaa
:     public synchronized void close() throws InterruptedException {
=     kkkkkk kkkkkkkkkkkk kkkk fffff   kkkkkk tttttttttttttttttttt
:         running = false;
=                   bbbbb
:         notifyAll();
=         fffffffff
:     }
:
:     /* A block comment is taken apart by the other rules: "text", 42, true. */
=        t                                                  ssssss  nn  bbbb
:     public <R> R run(T job) {
=     kkkkkk  t  t fff t
:         if (job == null || jobs.size() > LIMIT) {
=         kk         bbbb         ffff     ttttt
:             throw new IllegalArgumentException("too many jobs: \"" + jobs.size() + '"');
=             kkkkk kkk ffffffffffffffffffffffff sssssssssssssssssss        ffff     sss
:         }
:         var url = "https://example.org/jobs";
=         kkk              cccccccccccccccccccc
:         char tab = '\t', quote = '\'';
=         kkkk       ssss          ssss
:         double share = 1.5e-3 * .5;
=         kkkkkk         nnnnnn    n
:         switch (job.kind()) {
=         kkkkkk      ffff
:             case 1 -> System.out.println(url + tab);
=             kkkk n    tttttt     fffffff
:             default -> { assert !running : "running"; }
=             kkkkkkk      kkkkkk            sssssssss
:         }
:         for (T each : jobs) {
=         kkk  t
:             each.run(TimeUnit.SECONDS);
=                  fff tttttttt ttttttt
:         }
:         return (R) (job instanceof Runnable r ? r : null);
=         kkkkkk  t       kkkkkkkkkk tttttttt         bbbb
:     }
:
:     @interface Slow { int value() default 0x10; }
=     aaaaaaaaaa tttt   kkk fffff   kkkkkkk nnnn
:     enum State { READY, DONE }
=     kkkk ttttt   ttttt  tttt
: }
:
