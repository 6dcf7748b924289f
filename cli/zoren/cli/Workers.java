package zoren.cli;

import java.util.ArrayDeque;
import java.util.List;
import java.util.Queue;
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
            final Queue<Future<T>> results = new ArrayDeque<>();
            tasks.forEach(task -> results.add(threads.submit(task)));
            while (!results.isEmpty()) { // what is handed on need not stay in memory
                taker.take(results.remove().get());
            }
        } catch (ExecutionException e) {
            if (e.getCause() instanceof Error) {
                throw (Error) e.getCause();
            }
            throw (Exception) e.getCause();
        } finally {
            threads.shutdownNow();
        }
    }
}
