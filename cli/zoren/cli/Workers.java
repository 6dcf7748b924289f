package zoren.cli;

import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;

/** Does tasks on several threads and hands their results on in the tasks' order. */
final class Workers {
    /** Takes the result of one task. */
    interface Taker<T> {
        void take(T result) throws Exception;
    }

    private Workers() {}

    static <T> void run(int jobs, List<Callable<T>> tasks, Taker<T> taker) throws Exception {
        final ExecutorService threads =
                Executors.newFixedThreadPool(Math.min(jobs, Math.max(1, tasks.size())));
        try {
            final List<Future<T>> results = new ArrayList<>();
            tasks.forEach(task -> results.add(threads.submit(task)));
            for (final Future<T> result : results) {
                taker.take(result.get());
            }
        } catch (ExecutionException e) {
            throw e.getCause() instanceof Exception ? (Exception) e.getCause() : e;
        } finally {
            threads.shutdownNow();
        }
    }
}
