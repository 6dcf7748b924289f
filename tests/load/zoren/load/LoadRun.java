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
import java.util.stream.IntStream;
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
    private static final ForkJoinPool POOL = new ForkJoinPool(THREADS);
    private static final Path ROOT = Path.of(System.getenv("ZOREN_DEVICE_ROOT"));
    private static final String XML = "<item name='load'>\u00e9</item>\n".repeat(30);
    private static final int[][] SIZES = {{24, 17}, {2, 2}, {31, 40}, {100, 3}, {5, 130}};
    private static final float[] RADII = {0, 0.7f, 2.5f, 8, 12.3f, 25, 60, 300, 1500};
    private static final Queue<Bitmap> BITMAPS = new ConcurrentLinkedQueue<>(); // all there are
    private static final Bitmap[] SHARED = bitmaps(); // of all threads: what only reads has them
    private static final ThreadLocal<Bitmap[]> OWN = ThreadLocal.withInitial(LoadRun::bitmaps);
    private static final Object[] EXPECTED = new Object[5 * RADII.length];

    static {
        System.loadLibrary("zoren_local_references");
    }

    private LoadRun() {}

    /** Makes as many calls as the argument says. Exit code 1 when a check fails. */
    public static void main(String[] args) throws Exception {
        writeDeviceFiles();
        Arrays.setAll(EXPECTED, i -> result(i, SHARED));
        if (!EXPECTED[3].equals(XML) || !EXPECTED[9].equals(1001L)) {
            throw new IllegalStateException("the files of the device are not read");
        }
        final int calls = Integer.parseInt(args[0]);
        final int warmUp = calls / 5;
        final long start = System.nanoTime();
        callAll(0, warmUp);
        final long[] before = held();
        callAll(warmUp, calls);
        final long[] after = held();
        System.out.printf("%d calls by %d threads in %.1f s, growth from call %d on%n",
                calls, THREADS, (System.nanoTime() - start) / 1e9, warmUp);
        // The machine itself takes about 250 KiB, and holds a class or two that it compiles.
        boolean passed = check("KiB of resident memory", before[0], after[0], 1024);
        passed &= check("open files", before[1], after[1], 0);
        passed &= check("locks", before[2], after[2], 0);
        passed &= check("global references", before[3], after[3], 2);
        System.exit(passed ? 0 : 1);
    }

    /** How many local references native code has made and not deleted on this thread. */
    private static native long localReferences();

    /** Makes the calls of a range on all threads of the pool; ends with the first that fails. */
    private static void callAll(int begin, int end) throws Exception {
        POOL.submit(() -> IntStream.range(begin, end).parallel().forEach(LoadRun::call)).get();
    }

    private static void call(int i) {
        final int which = i % EXPECTED.length;
        final Bitmap[] own = OWN.get();
        final long references = localReferences();
        final Object result = result(which, own);
        final long left = localReferences() - references - (which % 5 == 3 ? 1 : 0);
        if (left != 0 || !EXPECTED[which].equals(result)) {
            throw new IllegalStateException("call " + i + " leaves " + left + " local references"
                    + " and gives " + result + ", one thread's " + EXPECTED[which]);
        }
    }

    private static Object result(int i, Bitmap[] own) {
        final int row = i / 5;
        return switch (i % 5) {
            case 0 -> blurred(own[row], row);
            case 1 -> BitmapGrayUtil.getBitmapGray(SHARED[row]);
            case 2 -> BitmapGrayUtil.getBitmapColorCast(SHARED[row], 10 * row, 90);
            case 3 -> ZorenConfig.getConfigXML();
            default -> ZorenTrafficStats.getRxBytes("wlan0", 1000 + row);
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
