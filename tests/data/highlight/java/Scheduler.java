package org.example.jobs;

import java.util.List;
import java.util.concurrent.TimeUnit;

// Runs jobs one after the other.
@SuppressWarnings("unchecked")
public sealed class Scheduler<T extends Job> implements AutoCloseable permits Fast, Slow {
    private static final long LIMIT = 10_000L;
    private static final int MASK = 0xFF, BITS = 0b1010, OLD = 017;
    private volatile boolean running = false;
    private final List<T> jobs = new java.util.ArrayList<>();

    public record Entry(String name, double weight) {}

    @Override
    public synchronized void close() throws InterruptedException {
        running = false;
        notifyAll();
    }

    /* A block comment is taken apart by the other rules: "text", 42, true. */
    public <R> R run(T job) {
        if (job == null || jobs.size() > LIMIT) {
            throw new IllegalArgumentException("too many jobs: \"" + jobs.size() + '"');
        }
        var url = "https://example.org/jobs";
        char tab = '\t', quote = '\'';
        double share = 1.5e-3 * .5;
        switch (job.kind()) {
            case 1 -> System.out.println(url + tab);
            default -> { assert !running : "running"; }
        }
        for (T each : jobs) {
            each.run(TimeUnit.SECONDS);
        }
        return (R) (job instanceof Runnable r ? r : null);
    }

    @interface Slow { int value() default 0x10; }
    enum State { READY, DONE }
}
