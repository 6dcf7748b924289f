package zoren.load;

import static java.nio.charset.StandardCharsets.UTF_8;

import android.graphics.Bitmap;
import android.util.ZorenConfig;
import java.lang.management.ManagementFactory;
import java.lang.reflect.Method;
import java.nio.IntBuffer;
import java.nio.file.*;
import java.util.*;
import java.util.concurrent.*;
import java.util.concurrent.atomic.LongAdder;
import javax.crypto.Cipher;
import javax.crypto.spec.*;
import javax.management.ObjectName;
import zoren.net.ZorenTrafficStats;
import zoren.util.*;

/**
 * Calls the five natives from many threads at once. Every result must equal the one that a single
 * thread had before, and the process must hold no more at the end than after a warm-up.
 */
public final class LoadRun {
    private static final int THREADS = 4 * Runtime.getRuntime().availableProcessors();
    private static final Path ROOT = Path.of(System.getenv("ZOREN_DEVICE_ROOT"));
    private static final String XML = "<item name='load'>\u00e9</item>\n".repeat(30);
    private static final int[][] SIZES = {{24, 17}, {2, 2}, {31, 40}, {100, 3}, {5, 130}};
    private static final float[] RADII = {0, 0.7f, 2.5f, 8, 12.3f, 25, 60, 300, 1500};
    private static final List<Bitmap> BITMAPS = new ArrayList<>(); // all there are

    static {
        System.loadLibrary("zoren_local_references");
    }

    private LoadRun() {}

    /** Makes as many calls as the argument says. Exit code 1 when a check fails. */
    public static void main(String[] args) throws Exception {
        writeDeviceFiles();
        final int calls = Integer.parseInt(args[0]);
        final int[] ends = {0, calls / 5, calls}; // of the warm-up and of the rest
        final Bitmap[] shared = bitmaps();
        final Object[][] expected = new Object[5][RADII.length];
        for (int i = 0; i < 5 * RADII.length; i++) {
            expected[i % 5][i / 5] = call(i % 5, i / 5, shared[i / 5]);
        }
        if (!expected[3][0].equals(XML) || !expected[4][1].equals(1001L)) {
            throw new IllegalStateException("the files of the device are not read");
        }
        final Bitmap[][] own = new Bitmap[THREADS][];
        Arrays.setAll(own, t -> bitmaps());
        final LongAdder wrong = new LongAdder();
        final LongAdder littered = new LongAdder();
        final ExecutorService pool = Executors.newFixedThreadPool(THREADS);
        final long start = System.nanoTime();
        final long[][] held = new long[2][];
        for (int phase = 0; phase < 2; phase++) {
            final int begin = ends[phase];
            final long size = ends[phase + 1] - begin;
            final List<Callable<Void>> parts = new ArrayList<>();
            for (int t = 0; t < THREADS; t++) {
                final int thread = t;
                parts.add(() -> {
                    long i = begin + size * thread / THREADS;
                    for (; i < begin + size * (thread + 1) / THREADS; i++) {
                        final int kind = (int) (i % 5);
                        final int row = (int) (i / 5 % RADII.length);
                        // What only reads has the bitmap of all threads.
                        final Bitmap bitmap = (kind == 0 ? own[thread] : shared)[row];
                        final long references = localReferences();
                        final Object result = call(kind, row, bitmap);
                        if (localReferences() - references != (kind == 3 ? 1 : 0)) {
                            littered.increment();
                        }
                        if (!expected[kind][row].equals(result)) {
                            wrong.increment();
                        }
                    }
                    return null;
                });
            }
            for (final Future<Void> part : pool.invokeAll(parts)) {
                part.get();
            }
            held[phase] = held();
        }
        System.out.printf("%d calls by %d threads in %.1f s, growth from call %d on%n",
                calls, THREADS, (System.nanoTime() - start) / 1e9, ends[1]);
        boolean passed = check("results that differ from one thread's", 0, wrong.sum(), 0);
        passed &= check("calls that leave a local reference", 0, littered.sum(), 0);
        // The machine itself takes about 250 KiB, and holds a class or two that it compiles.
        passed &= check("KiB of resident memory", held[0][0], held[1][0], 1024);
        passed &= check("open files", held[0][1], held[1][1], 0);
        passed &= check("locks", held[0][2], held[1][2], 0);
        passed &= check("global references", held[0][3], held[1][3], 2);
        System.exit(passed ? 0 : 1);
    }

    /** How many local references native code has made and not deleted on this thread. */
    private static native long localReferences();

    private static Object call(int kind, int i, Bitmap bitmap) {
        return switch (kind) {
            case 0 -> blurred(bitmap, i);
            case 1 -> BitmapGrayUtil.getBitmapGray(bitmap);
            case 2 -> BitmapGrayUtil.getBitmapColorCast(bitmap, 10 * i, 90);
            case 3 -> ZorenConfig.getConfigXML();
            default -> ZorenTrafficStats.getRxBytes("wlan0", 1000 + i);
        };
    }

    /** Blurs the bitmap and returns the pixels; the bitmap is as before. */
    private static IntBuffer blurred(Bitmap bitmap, int i) {
        final IntBuffer before = IntBuffer.allocate(bitmap.getWidth() * bitmap.getHeight());
        final IntBuffer after = IntBuffer.allocate(before.capacity());
        bitmap.copyPixelsToBuffer(before);
        BlurUtil.getBlurEffect(bitmap, RADII[i], 0x40FF8800 * (i % 2));
        bitmap.copyPixelsToBuffer(after);
        bitmap.copyPixelsFromBuffer(before.flip());
        return after.flip();
    }

    private static Bitmap[] bitmaps() {
        final Bitmap[] bitmaps = new Bitmap[RADII.length];
        for (int i = 0; i < bitmaps.length; i++) {
            final int[] size = SIZES[i % SIZES.length];
            final int tint = i % 2 == 0 ? 0xFFFF0000 : 0; // a cast, or noise
            final int[] colors = new Random(i).ints(size[0] * size[1]).map(x -> x | tint).toArray();
            bitmaps[i] = Bitmap.createBitmap(colors, size[0], size[1], Bitmap.Config.ARGB_8888);
        }
        BITMAPS.addAll(Arrays.asList(bitmaps));
        return bitmaps;
    }

    /** What the process holds now. */
    private static long[] held() throws Exception {
        System.gc();
        final Object dump = ManagementFactory.getPlatformMBeanServer().invoke(
                new ObjectName("com.sun.management:type=DiagnosticCommand"), "threadPrint",
                new Object[] {new String[0]}, new String[] {String[].class.getName()});
        final Method lockCount = Bitmap.class.getDeclaredMethod("lockCount");
        lockCount.setAccessible(true);
        long locks = 0;
        for (final Bitmap bitmap : BITMAPS) {
            locks += (int) lockCount.invoke(bitmap);
        }
        return new long[] {
            number(Files.readString(Path.of("/proc/self/smaps_rollup")), "Rss:"),
            Path.of("/proc/self/fd").toFile().list().length,
            locks,
            number(dump.toString(), "JNI global refs:"),
        };
    }

    private static long number(String text, String label) {
        final String behind = text.substring(text.indexOf(label) + label.length());
        return Long.parseLong(behind.strip().split("\\D", 2)[0]);
    }

    private static boolean check(String what, long before, long after, long allowed) {
        final boolean passed = after - before <= allowed;
        System.out.printf("%s %+7d (from %d, at most +%d)  %s%n",
                passed ? "passed" : "FAILED", after - before, before, allowed, what);
        return passed;
    }

    private static void writeDeviceFiles() throws Exception {
        final byte[] key = "Qx7@Lumatrix2049".getBytes(UTF_8);
        final Cipher aes = Cipher.getInstance("AES/CBC/PKCS5Padding");
        aes.init(Cipher.ENCRYPT_MODE, new SecretKeySpec(key, "AES"), new IvParameterSpec(key));
        Files.write(ROOT.resolve("system/etc/jpsp"), aes.doFinal(XML.getBytes(UTF_8)));
        final StringBuilder lines = new StringBuilder();
        for (int uid = 1000; uid < 1000 + RADII.length; uid++) {
            lines.append("2 wlan0 0x0 " + uid + " 0 " + uid + " 1 2 3\n4 wlan0 0x1 1000 0 5 1 2 3\n");
        }
        Files.writeString(ROOT.resolve("proc/net/xt_qtaguid/stats"), lines);
    }
}
