package zoren;

import static org.junit.jupiter.api.Assertions.*;

import java.util.concurrent.CyclicBarrier;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.RepeatedTest;

/** Whichever framework class is used first, on however many threads: the library loads once. */
class FirstUseTest {
    private static final String[] CLASSES = {
        "zoren.util.BlurUtil", "zoren.util.BitmapGrayUtil",
        "android.util.ZorenConfig", "zoren.net.ZorenTrafficStats"
    };

    @RepeatedTest(3)
    void fourThreadsAtOnceDoNotWaitForEachOther() throws Exception {
        final String java = ProcessHandle.current().info().command().orElseThrow();
        final String library = "-Djava.library.path=" + System.getProperty("java.library.path");
        final String classPath = System.getProperty("java.class.path");
        final ProcessBuilder builder =
                new ProcessBuilder(java, library, "-cp", classPath, FirstUseTest.class.getName());
        final Process process = builder.inheritIO().start();
        final boolean ended = process.waitFor(20, TimeUnit.SECONDS);
        process.destroyForcibly();
        assertTrue(ended, "the threads wait for each other");
        assertEquals(0, process.exitValue());
    }

    /** The fresh virtual machine: a thread a class, all let go at once. */
    public static void main(String[] args) {
        final CyclicBarrier start = new CyclicBarrier(CLASSES.length);
        for (final String name : CLASSES) {
            new Thread(() -> load(name, start)).start();
        }
    }

    private static void load(String name, CyclicBarrier start) {
        try {
            start.await();
            Class.forName(name);
        } catch (Exception | LinkageError e) {
            e.printStackTrace();
            System.exit(1);
        }
    }
}
