// Blurs a picture: Blur IN OUT.png RADIUS, without compiling it first.
//
//   lib=$(pkg-config --variable=libdir zoren_runtime)
//   java -Djava.library.path=$lib -cp $lib/zoren-framework.jar:$lib/zoren-platform.jar \
//       Blur.java photo.jpg soft.png 10
import android.graphics.Bitmap;
import java.awt.image.BufferedImage;
import java.io.File;
import javax.imageio.ImageIO;
import zoren.util.BitmapGrayUtil;
import zoren.util.BlurUtil;

public class Blur {
    public static void main(String[] arguments) throws Exception {
        if (arguments.length != 3) {
            System.err.println("usage: Blur IN OUT.png RADIUS");
            System.exit(2);
        }
        final BufferedImage in = ImageIO.read(new File(arguments[0]));
        if (in == null) {
            System.err.println(arguments[0] + ": not a picture");
            System.exit(1);
        }
        final int width = in.getWidth(), height = in.getHeight();
        final int[] colors = in.getRGB(0, 0, width, height, null, 0, width);

        final Bitmap bitmap = Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888);
        bitmap.setPixels(colors, 0, width, 0, 0, width, height);
        BlurUtil.getBlurEffect(bitmap, Float.parseFloat(arguments[2]), 0x40FF8800);
        System.out.println("gray " + BitmapGrayUtil.getBitmapGray(bitmap));

        bitmap.getPixels(colors, 0, width, 0, 0, width, height);
        final BufferedImage out = new BufferedImage(width, height, BufferedImage.TYPE_INT_RGB);
        out.setRGB(0, 0, width, height, colors, 0, width);
        ImageIO.write(out, "png", new File(arguments[1]));
    }
}
